#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/media.h"
#include "host/tasks.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "tests/reference_host/Holder.h"
#include "tests/reference_host/TaskRecorder.h"

namespace minimal_host_tests {

using reference_host_tests::hold;
using reference_host_tests::Holder;
using reference_host_tests::Milestones;
using reference_host_tests::TaskRecorder;

/// Returns a function of the host's library, which is loaded with the first call. `Function` is the
/// type of its declaration.
void* hostSymbol(const char* name);
template <typename Function>
Function* hostFunction(Function*, const char* name) {
    return reinterpret_cast<Function*>(hostSymbol(name));
}

/// The host's service of this name, as its header declares it.
#define HOST(service) hostFunction(static_cast<decltype(&(service))>(nullptr), #service)

/// Makes a component from the library, which finds its services in that of the host.
Holder<KOR::IKorMaterialAnalysis> makeComponent();

using Material = Holder<KOR::IDmBaseObj>;
using Task = Holder<KOR::IKorBaseTask>;

/// Null where the host makes nothing of the file.
Material import(const std::filesystem::path& file, const std::filesystem::path& cache = {});
KOR::IDmBaseMedia& mediaOf(const Material& material);
KOR::IDmMediaSource& sourceOf(const Material& material);

Task makeTask(std::initializer_list<std::int32_t> types);
KOR::IBsMediaAnalysisTask& analysisOf(const Task& task);

/// Hands over the positions of the pictures to be looked at, or where keyframes are to be found.
void lookAt(const Task& task, const std::vector<std::int64_t>& positions);
void lookWithin(const Task& task, std::vector<KOR::TickRange> ranges);

/// Returns what the task has found of one kind.
std::vector<const void*> elementsOf(const Holder<KOR::IKORVoidPtrList>& list);
Holder<KOR::IKORVoidPtrList> resultsOf(const Task& task, std::int32_t kind);
template <typename Element>
std::vector<Element> resultsOf(const Task& task, std::int32_t kind) {
    std::vector<Element> results;
    const auto list = resultsOf(task, kind);
    for (const void* element : elementsOf(list))
        results.push_back(*static_cast<const Element*>(element));
    return results;
}

/// A task that has the source of a file and a listener.
struct TaskRun {
    TaskRun(std::initializer_list<std::int32_t> types, const std::filesystem::path& file,
            const std::filesystem::path& cache = {});
    ~TaskRun();

    /// Runs until the task has finished `times` times in its life.
    void finish(std::size_t times = 1);

    Material material;
    TaskRecorder recorder;
    Task task;
};

}  // namespace minimal_host_tests
