#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fake_host/Counted.h"
#include "fake_host/FakeMedia.h"
#include "fake_host/RecordingListener.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "tests/component/ContractModel.h"

namespace fake_host {

/// A component on a fresh fake host beside a model of both. What is done to the one is done to the
/// other, and everything that shows is held against each other after each step.
class ModelledRun {
public:
    ModelledRun();
    ModelledRun(const ModelledRun&) = delete;
    ModelledRun& operator=(const ModelledRun&) = delete;
    ~ModelledRun();

    /// The model, whose materials, files and faults a case sets up before `prepare`.
    ContractModel model;

    /// Brings the host into the state that the model is in. Once, before anything else.
    void prepare();

    /// Makes the tasks of these kinds. No photo is let be selected for ever: where that would come,
    /// photos are not analysed.
    void setKinds(const std::vector<std::int32_t>& kinds);

    void setParam(const char* key, std::int32_t value);
    void setThreshold(double value);
    void setPriority(std::uint32_t priority);

    /// What of the model's task was changed holds for the host's as well.
    void adaptTask(std::size_t task);

    void start();
    void stop();
    void finish(std::size_t task);
    void send(std::size_t task, std::uint32_t category, std::uint32_t event, bool hasPayload,
              std::int32_t percent);

    /// The first task that runs, or the number of tasks.
    std::size_t runningTask() const;

    /// Lets whatever runs come to its end, as far as hosts are promised what happens then.
    void finishAll();

    /// From here on everything that the host makes and does succeeds again.
    void heal();

    /// Ends the component, of which nothing may be left.
    void end();

    /// Where component and model were apart first, after what; empty as long as nowhere.
    const std::string& difference() const { return difference_; }

private:
    void makeMedia();
    void makeFiles();
    void breakHost();
    void keepOffEndlessPhotos();
    void compare(const std::string& after);
    void compareRecords(const std::string& after);
    void fail(const std::string& what);
    KOR::IKorMaterialAnalysis& component() { return *component_; }

    std::vector<RecordingListener> listeners_;
    int listenerCalls_ = 0;
    std::vector<Owned<FakeMedia>> media_;
    Owned<KOR::IKorMaterialAnalysis> component_;
    std::string difference_;
};

/// Runs the case that `bytes` describe, whatever they are. Returns the first difference between
/// component and model, empty where there is none.
std::string differenceInRun(const std::uint8_t* bytes, std::size_t size);

}  // namespace fake_host
