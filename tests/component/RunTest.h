#pragma once

#include <string>
#include <vector>

#include "fake_host/paths.h"
#include "fake_host/text.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {

/// A component with one listener.
class RunTest : public ComponentTest {
protected:
    RunTest() { component().addCallBack(&listener); }

    /// Makes the tasks and forgets what that put into the journal.
    void useKindsQuietly(const std::vector<std::int32_t>& kinds) {
        useKinds(kinds);
        host().takeJournal();
    }

    /// 100 seconds with two scenes that count and one that is too short.
    static MediaSpec clip() {
        return video("clip.mp4", 1000000000)
            .scenes({{0, 400000000}, {400000000, 410000000}, {410000000, 1000000000}})
            .keyFrames({100000000, 405000000, 600000000});
    }

    /// Starts a run, and lets every task report 50 percent before it finishes.
    std::string traceOfRun() {
        component().start();
        while (FakeTask* const running = host().runningTask()) {
            running->progress(50);
            running->finish();
        }
        return trace();
    }

    /// Which task was started on what since the last call of journal(), as "task0 clip.mp4".
    Lines starts() {
        Lines started;
        std::string source;
        for (const std::string& line : journal()) {
            const std::string mark = ".setSource(";
            const std::size_t at = line.find(mark);
            if (at != std::string::npos) {
                const std::size_t name = at + mark.size();
                source = line.substr(name, line.find(',', name) - name);
            }
            const std::size_t start = line.find(".start");
            if (start != std::string::npos) started.push_back(line.substr(0, start) + " " + source);
        }
        return started;
    }

    /// The result file of the material whose cache is this test's directory; empty without one.
    static std::string resultFile() {
        return contentOf(host().directory() / "analysis" / "result.json");
    }

    RecordingListener listener;
};

}  // namespace fake_host
