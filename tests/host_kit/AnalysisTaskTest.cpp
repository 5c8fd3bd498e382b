#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "host_kit/AnalysisTask.h"

namespace host_kit {
namespace {

/// Refuses to be analysed when it is told that a run begins.
class Unwilling final : public Analysable {
public:
    AnalysisResults analyse(const AnalysisRequest&, const std::stop_token&,
                            ProgressMeter&) override {
        return {};
    }
    void noteAnalysis() override { throw std::runtime_error("not now"); }
    void noteFailure(const std::string&) override {}
};

class UnwillingSource final : public Source {
public:
    std::shared_ptr<Analysable> analysable() override { return std::make_shared<Unwilling>(); }
    KOR::Status getMediaInfo(const char*, KOR::KorValue*) override { return KOR::statusFailed; }
    const char* getMediaInfoText(const char*) override { return ""; }
};

TEST(AnalysisTask, IsIdleWhenItsSourceRefusesToBegin) {
    UnwillingSource source;
    auto* const task = new AnalysisTask({KOR::analysisTypeScene});
    ASSERT_EQ(task->setSource(&source, 0, 0), KOR::statusOk);
    const std::uint32_t idle = task->getState();
    EXPECT_EQ(task->start(), KOR::statusFailed);
    EXPECT_EQ(task->getState(), idle);
    task->release();
}

}  // namespace
}  // namespace host_kit
