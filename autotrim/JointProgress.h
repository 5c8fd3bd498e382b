#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace autotrim {

/// Makes one progress of that of several runs side by side: each counts as much as it has to do. As
/// long as no run goes backwards, the whole does not. Any thread.
class JointProgress {
public:
    /// Shows the file that is being worked on, by its index, and the percentage of the whole.
    using Show = std::function<void(std::size_t file, int percent)>;

    /// `work` tells how much each run has to do, 0 or more, in a unit that they have in common.
    /// `show` is called inside report(), by one thread at a time.
    JointProgress(const std::vector<std::int64_t>& work, Show show);

    /// Takes in that `run` works on `file` and has come to `percent` of its work. Of all the files
    /// that are being worked on, the last one is shown.
    void report(std::size_t run, std::size_t file, int percent);

    /// Takes in that `run` works on nothing any more, whether it has done all or not.
    void end(std::size_t run);

private:
    struct Run {
        std::int64_t work;
        int percent = 0;
        std::optional<std::size_t> file;  ///< unset before the first report, and after the end
    };

    std::size_t latestFile() const;
    int percent() const;

    std::mutex mutex_;
    std::vector<Run> runs_;
    Show show_;
};

}  // namespace autotrim
