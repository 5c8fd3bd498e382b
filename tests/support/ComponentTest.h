#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/Counted.h"
#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "fake_host/FakeTask.h"
#include "fake_host/RecordingListener.h"
#include "host/lists.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "tests/support/ComponentProbe.h"

namespace fake_host {

constexpr std::int64_t second = KOR::ticksPerSecond;

using Lines = std::vector<std::string>;

Owned<KOR::IKORIntList> intList(const std::vector<std::int32_t>& values);

/// A borrowing list of materials; null stands for an element that is null.
Owned<KOR::IKORVoidPtrList> materialList(const std::vector<FakeMedia*>& materials);

/// A fresh host and a fresh component. At the end of a test the component ends too, no object may
/// be left, and every material must have got its references back.
class ComponentTest : public ::testing::Test {
protected:
    ComponentTest();
    ~ComponentTest() override;

    void TearDown() override;

    KOR::IKorMaterialAnalysis& component() { return *component_; }
    KOR::ComponentProbe probe() { return KOR::ComponentProbe(*component_); }

    /// Gives back the test's reference on the component before the end of the test.
    void releaseComponent() { component_.release()->release(); }

    /// Makes a material that lives as long as the test.
    FakeMedia& make(const MediaSpec& spec);

    /// Makes a material and adds it at the end of the component's.
    FakeMedia& insert(const MediaSpec& spec);

    void useKinds(const std::vector<std::int32_t>& kinds);
    void setParam(const char* key, std::int32_t value);
    void setThreshold(double value);

    FakeTask& task(std::size_t number) { return host().task(number); }

    /// Starts a run and finishes every task of it.
    void runToEnd();

    /// What happened since the last look, a line for each call, log line and event, with this
    /// test's directory called "<dir>".
    Lines journal();

    /// The same as one text, which begins with a line feed, as the literals do that it is held
    /// against.
    std::string trace();

    /// The log's texts so far.
    Lines logTexts() const;

private:
    std::vector<Owned<FakeMedia>> materials_;
    Owned<KOR::IKorMaterialAnalysis> component_;
};

}  // namespace fake_host
