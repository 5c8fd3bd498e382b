#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "host/results.h"
#include "host/tasks.h"
#include "validator/host/Flag.h"
#include "validator/host/HostLibrary.h"
#include "validator/host/Listener.h"

namespace validator {

using Types = std::vector<std::int32_t>;

/// The operations of a task that analyses. Fails where the task does not have them.
KOR::IBsMediaAnalysisTask& analysisOf(KOR::IDmBaseObj& task);

/// Has the results of one kind appended to `list`, an owning one, and returns all its elements.
/// Fails where that is refused, or an element is null.
std::vector<const void*> resultsOf(KOR::IBsMediaAnalysisTask& task, std::int32_t kind,
                                   KOR::IKORVoidPtrList& list);

/// A task of the candidate with a listener, and with a source where it is given one.
class Run {
public:
    Run(const HostLibrary& host, const Types& types, KOR::IDmMediaSource* source = nullptr);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    /// Starts a run; fails where the task refuses.
    void start();

    /// Starts a run and waits for its end.
    void finish();

    void setPositions(const std::vector<std::int64_t>& positions);
    void setRanges(std::vector<KOR::TickRange> ranges);
    void setMode(std::int32_t mode);
    void setBlock(const KOR::SceneParameters& block);
    void setBlock(const KOR::KeyFrameParameters& block);

    /// Copies of the results of one kind, of which `Element` is the type.
    template <typename Element>
    std::vector<Element> results(std::int32_t kind) const {
        const auto list = host_.owningList();
        std::vector<Element> copies;
        for (const void* const element : resultsOf(analysis, kind, *list)) {
            Element& copy = copies.emplace_back();
            std::memcpy(&copy, element, sizeof(Element));
        }
        return copies;
    }

    std::vector<KOR::TickRange> scenes() const;
    std::vector<std::int64_t> keyFrames() const;
    std::vector<KOR::FaceDetectFrame> faces() const;
    std::vector<KOR::EntropySample> entropies() const;
    std::vector<KOR::BlurSample> blurs() const;

    /// The number of results of one kind.
    std::int64_t count(std::int32_t kind) const;

private:
    const HostLibrary& host_;

public:
    /// Never freed: a faulty candidate may call it when nobody should be called any more.
    Listener& listener;
    Held<KOR::IKorBaseTask> task;
    KOR::IBsMediaAnalysisTask& analysis;
};

/// The milestones of a run that ends well, is stopped or fails.
inline const Milestones finished = {KOR::taskEventFinished};
inline const Milestones stopped = {KOR::taskEventStopped};
inline const Milestones failedAndFinished = {KOR::taskEventFailed, KOR::taskEventFinished};

/// Holds the run whose event is being told until `flag` is set. The check is skipped where the run
/// goes on inside start(), as it may: nobody could set the flag then.
void holdUntil(const Flag& flag);

/// Lets whole runs go by for a while, so that one that was given up has the time to speak, if it
/// would.
void letTimePass(const HostLibrary& host);

}  // namespace validator
