#pragma once

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {

/// One component on a fresh host, for one case of a property; at its end nothing may be left.
class Case {
public:
    Case() {
        host().reset();
        component_.reset(createMaterialAnalysis());
    }
    ~Case() {
        component_.reset();
        materials_.clear();
        EXPECT_EQ(host().live.media, 0);
        EXPECT_EQ(host().live.tasks, 0);
        EXPECT_EQ(host().live.lists, 0);
        host().reset();
    }
    Case(const Case&) = delete;
    Case& operator=(const Case&) = delete;

    KOR::IKorMaterialAnalysis& component() { return *component_; }
    KOR::ComponentProbe probe() { return KOR::ComponentProbe(*component_); }

    FakeMedia& make(const MediaSpec& spec) { return *materials_.emplace_back(new FakeMedia(spec)); }
    FakeMedia& insert(const MediaSpec& spec) {
        FakeMedia& material = make(spec);
        const auto end = static_cast<std::int32_t>(probe().materials().size());
        component().insertMaterials(materialList({&material}).get(), end);
        return material;
    }
    void useKinds(const std::vector<std::int32_t>& kinds) {
        component().setAnalysisKinds(intList(kinds).get());
    }

private:
    std::vector<Owned<FakeMedia>> materials_;
    Owned<KOR::IKorMaterialAnalysis> component_;
};

}  // namespace fake_host
