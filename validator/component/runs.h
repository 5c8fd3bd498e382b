#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "validator/component/Stage.h"

/// What checks of runs share.
namespace validator {

using Events = std::vector<std::uint32_t>;

/// A video of 100 seconds with three scenes, the second of which is too short to count, and a
/// keyframe in each.
MediaSpec clip(const std::string& fileName = "clip.mp4");

/// A photo that is shown for as long as this, so that its duration counts.
MediaSpec shownPhoto(const std::string& fileName, std::int64_t ticks);

/// Makes tasks for the kinds and forgets what that put into the journal.
void useKindsQuietly(Stage& stage, const std::vector<std::int32_t>& kinds);

/// Which task was started on what since the last look at the journal, as "task0 clip.mp4".
Lines startsSinceLastLook(Stage& stage);

/// The journal without what is left open: how often keyframes are asked for once a task has ended.
/// Of such questions the first one stays.
Lines journalOfRun(Stage& stage);

/// The lines of a text that begins with a line feed and ends with one.
Lines linesOf(const std::string& text);

/// Starts a run, and lets every task report 50 percent before it finishes.
void runWithProgress(Stage& stage);

/// The records with everything in them: "a.mp4 [0, 20) at 10: 1.0 {0.0, 0.0, 0.0, 0.0}".
Lines recordLines(Stage& stage);

/// The task that runs; fails where none does.
FakeTask& theRunningTask();

/// Has `action` run inside the next event that the listener is told of, and only there.
void onceInside(RecordingListener& listener, std::function<void()> action);

/// Has the running task report, and `action` run inside what the listener is told of it: while a
/// run is on, that is where a host may do most things.
void insideProgress(RecordingListener& listener, std::function<void()> action);

/// Fails unless nothing of the host's is left once the stage has let go of everything.
void expectNothingLeft(Stage& stage);

}  // namespace validator
