#pragma once

#include <memory>

#include "host_kit/Source.h"
#include "reference_host/materials/Footage.h"

namespace reference_host {

/// Footage as tasks see it.
class FootageAnalysis final : public host_kit::Analysable {
public:
    explicit FootageAnalysis(std::shared_ptr<Footage> footage) : footage_(std::move(footage)) {}

    host_kit::AnalysisResults analyse(const host_kit::AnalysisRequest& request,
                                      const std::stop_token& stop,
                                      host_kit::ProgressMeter& progress) override;
    void noteAnalysis() override { footage_->noteAnalysis(); }
    void noteAnalysed() override { footage_->noteAnalysed(); }
    void noteFailure(const std::string& reason) override { footage_->noteFailure(reason); }

private:
    const std::shared_ptr<Footage> footage_;
};

}  // namespace reference_host
