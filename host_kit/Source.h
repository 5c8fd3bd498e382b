#pragma once

#include <memory>
#include <stop_token>
#include <string>

#include "host/media.h"
#include "host_kit/AnalysisRequest.h"
#include "host_kit/AnalysisResults.h"
#include "host_kit/ProgressMeter.h"

namespace host_kit {

/// What tasks analyse: the part of a host that is its own. Materials and the runs that read it
/// share it, so that a run may outlive its material. Any thread.
class Analysable {
public:
    virtual ~Analysable() = default;

    /// Does what was asked, on the thread of a run. Throws std::exception, whose text is the reason
    /// of the failure. Once `stop` is requested it is to return soon; what it returns, throws or
    /// reports then means nothing.
    virtual AnalysisResults analyse(const AnalysisRequest& request, const std::stop_token& stop,
                                    ProgressMeter& progress) = 0;

    /// Is told that a run begins, on the thread that starts it. Where it throws std::exception, no
    /// run is started.
    virtual void noteAnalysis() {}

    /// Is told that a run has ended well, before anyone else is.
    virtual void noteAnalysed() {}

    /// Is told that a run has failed, before anyone else is: from now on the material's
    /// mediaInfoKey::media_cache is to be empty.
    virtual void noteFailure(const std::string& reason) = 0;
};

/// The source of a material, as tasks of this kit know it: setSource takes no other.
class Source : public KOR::IDmMediaSource {
public:
    virtual ~Source() = default;

    /// Never null.
    virtual std::shared_ptr<Analysable> analysable() = 0;
};

}  // namespace host_kit
