#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "host/geometry.h"
#include "host/lists.h"

/// A complete host in memory: every service of host/ works, and can be told to fail.
///
/// There is one host per process; a test begins with reset().
namespace fake_host {

class FakeTask;

/// What the host makes on demand, and so what can fail to be made.
enum class Product { intList, longlongList, pointerList, owningList, task };

/// One line of the log, as the component gave it.
struct LogLine {
    std::uint32_t severity;
    std::string sourceUnit;
    std::int32_t sourceLine;
    std::string function;
    std::string tag;
    std::string text;
};

/// How many objects of the host exist right now.
struct LiveObjects {
    std::atomic<int> media{0};
    std::atomic<int> tasks{0};
    std::atomic<int> lists{0};
    std::atomic<int> logStreams{0};
};

/// Decides which services fail. Everything works until it is told otherwise.
class Faults {
public:
    /// Lets the `nth` making of `product` from now on fail, counted from 1.
    void failMaking(Product product, int nth);

    /// Lets every making of `product` from now on fail.
    void failEveryMaking(Product product);

    /// Lets every append to a list of this kind fail, lists that exist already included.
    void failAppends(Product list);

    /// Not for two threads at a time: see FakeHost::nextMakingFails.
    bool nextMakingFails(Product product);

    bool appendsFail(Product list) const;

    bool loggerAbsent = false;
    bool severityDisabled = false;
    bool logStreamsFail = false;
    bool directoriesFail = false;
    bool removalsFail = false;
    bool nothingExists = false;  ///< so PathUtil::exists says of everything

private:
    struct OfProduct {
        std::set<int> failing;
        bool allFail = false;
        bool appendsFail = false;
        int made = 0;
    };

    std::array<OfProduct, 5> products_;
};

/// How the host computes with rectangles. An operation without a rule keeps to the contract; with
/// one it shows a test what it is asked, or answers as the contract does not.
struct GeometryRules {
    std::function<double(const KOR::KorRect&)> width;
    std::function<double(const KOR::KorRect&)> height;
    std::function<KOR::KorPoint(const KOR::KorRect&)> centerPoint;
    std::function<std::int32_t(const KOR::KorPoint&, const KOR::KorRect&)> pointInRect;
};

class FakeHost {
public:
    FakeHost() = default;
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    /// Forgets everything and makes all services work again. Objects that still live stay valid.
    void reset();

    /// Adds a line to the one record of everything that the component does to the outside: calls to
    /// tasks, log lines, events to listeners and directories made, in their order.
    void note(const std::string& line);

    /// Returns the record so far and begins a new one.
    std::vector<std::string> takeJournal();

    /// Records that the component broke the contract; no test may end with a complaint.
    void complain(const std::string& what);
    std::vector<std::string> complaints() const;

    void addLogLine(LogLine line);
    std::vector<LogLine> logLines() const;

    /// Counts one more making of `product` and says whether it is to fail.
    bool nextMakingFails(Product product);

    /// The `number`th task made since reset(), which must still live.
    FakeTask& task(std::size_t number) const;
    std::size_t taskCount() const;
    std::size_t enrol(FakeTask& task);
    void strikeOff(std::size_t number);

    /// The task that runs, the first one where several do; null when none does.
    FakeTask* runningTask() const;

    /// Finishes running tasks until none runs any more.
    void finishAllTasks() const;

    /// A directory of this test's own, which reset() or the end of the program deletes.
    std::filesystem::path directory();

    Faults faults;
    GeometryRules geometry;
    LiveObjects live;

    /// Makes the lists for results instead of the host, where a test needs to see how one is read.
    std::function<KOR::IKORVoidPtrList*()> makeOwningList;

    /// Told of each line of the log once it is complete.
    std::function<void(const LogLine& line)> onLogLine;

    /// Off: nothing is recorded, so that benchmarks measure the component alone.
    bool recording = true;

    /// On: a task reports its end inside its own start.
    bool tasksFinishInsideStart = false;

    std::atomic<int> startDepth{0};         ///< starts of tasks that have not returned yet
    std::atomic<int> deepestStartDepth{0};  ///< the most that were so at any time
    std::atomic<int> startCount{0};
    std::atomic<int> directoriesMade{0};  ///< how often a directory was asked for

private:
    mutable std::mutex mutex_;
    std::vector<std::string> journal_;
    std::vector<std::string> complaints_;
    std::vector<LogLine> logLines_;
    std::vector<FakeTask*> tasks_;
    std::filesystem::path directory_;
};

FakeHost& host();

}  // namespace fake_host
