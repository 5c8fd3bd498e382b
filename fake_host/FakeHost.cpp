#include "fake_host/FakeHost.h"

#include <stdexcept>
#include <system_error>
#include <utility>

#include "fake_host/FakeTask.h"
#include "fake_host/paths.h"

namespace fake_host {

void Faults::failMaking(Product product, int nth) {
    OfProduct& of = products_.at(static_cast<std::size_t>(product));
    of.failing.insert(of.made + nth);
}

void Faults::failEveryMaking(Product product) {
    products_.at(static_cast<std::size_t>(product)).allFail = true;
}

void Faults::failAppends(Product list) {
    products_.at(static_cast<std::size_t>(list)).appendsFail = true;
}

bool Faults::nextMakingFails(Product product) {
    OfProduct& of = products_.at(static_cast<std::size_t>(product));
    ++of.made;
    return of.allFail || of.failing.count(of.made) != 0;
}

bool Faults::appendsFail(Product list) const {
    return products_.at(static_cast<std::size_t>(list)).appendsFail;
}

FakeHost::~FakeHost() {
    std::error_code error;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, error);
}

void FakeHost::reset() {
    const std::lock_guard lock(mutex_);
    faults = Faults();
    geometry = GeometryRules();
    makeOwningList = nullptr;
    onLogLine = nullptr;
    recording = true;
    tasksFinishInsideStart = false;
    startDepth = 0;
    deepestStartDepth = 0;
    startCount = 0;
    directoriesMade = 0;
    journal_.clear();
    complaints_.clear();
    logLines_.clear();
    tasks_.clear();
    if (!directory_.empty()) std::filesystem::remove_all(directory_);
    directory_.clear();
}

void FakeHost::note(const std::string& line) {
    const std::lock_guard lock(mutex_);
    journal_.push_back(line);
}

std::vector<std::string> FakeHost::takeJournal() {
    const std::lock_guard lock(mutex_);
    return std::exchange(journal_, {});
}

void FakeHost::complain(const std::string& what) {
    const std::lock_guard lock(mutex_);
    complaints_.push_back(what);
}

std::vector<std::string> FakeHost::complaints() const {
    const std::lock_guard lock(mutex_);
    return complaints_;
}

void FakeHost::addLogLine(LogLine line) {
    const std::lock_guard lock(mutex_);
    logLines_.push_back(std::move(line));
}

std::vector<LogLine> FakeHost::logLines() const {
    const std::lock_guard lock(mutex_);
    return logLines_;
}

bool FakeHost::nextMakingFails(Product product) {
    const std::lock_guard lock(mutex_);
    return faults.nextMakingFails(product);
}

FakeTask& FakeHost::task(std::size_t number) const {
    const std::lock_guard lock(mutex_);
    FakeTask* const task = tasks_.at(number);
    if (task == nullptr) throw std::logic_error("the task is gone");
    return *task;
}

std::size_t FakeHost::taskCount() const {
    const std::lock_guard lock(mutex_);
    return tasks_.size();
}

std::size_t FakeHost::enrol(FakeTask& task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(&task);
    return tasks_.size() - 1;
}

void FakeHost::strikeOff(std::size_t number) {
    const std::lock_guard lock(mutex_);
    if (number < tasks_.size()) tasks_[number] = nullptr;
}

FakeTask* FakeHost::runningTask() const {
    const std::lock_guard lock(mutex_);
    for (FakeTask* const task : tasks_) {
        if (task != nullptr && task->running()) return task;
    }
    return nullptr;
}

void FakeHost::finishAllTasks() const {
    while (FakeTask* const task = runningTask())
        task->finish();
}

std::filesystem::path FakeHost::directory() {
    const std::lock_guard lock(mutex_);
    if (directory_.empty()) directory_ = makeTemporaryDirectory();
    return directory_;
}

FakeHost& host() {
    static FakeHost theHost;
    return theHost;
}

}  // namespace fake_host
