#pragma once

#include <string>
#include <vector>

#include "tests/support/ComponentTest.h"
#include "tests/support/text.h"

namespace fake_host {

/// A component with one listener.
class RunTest : public ComponentTest {
protected:
    RunTest() { component().addCallBack(&listener); }

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

    /// The file that the first task of the current run was written to, below the test's directory.
    static std::string resultFile() {
        return contentOf((host().directory() / "analysis" / "result.json").string());
    }

    RecordingListener listener;
};

}  // namespace fake_host
