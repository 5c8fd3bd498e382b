#include <filesystem>

#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

const std::vector<Types> allTypes = {{1}, {9}, {2}, {3}, {8}, {1, 9}, {3, 8}};

std::filesystem::path lostFile(const HostLibrary& host) {
    return host.occasion().scratch / ("lost" + host.videoFile().extension().string());
}

/// A material whose file is gone when a task comes to read it.
Material lostMaterial(const HostLibrary& host) {
    const auto file = lostFile(host);
    std::filesystem::copy_file(host.videoFile(), file);
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(host.videoFile()));
    Material material = host.material(file);
    std::filesystem::remove(file);
    return material;
}

/// Runs a task of scenes on it to the end. The check is skipped where that does not fail.
void finishFailing(Run& run) {
    run.finish();
    if (run.listener.milestones() == finished) {
        skip("a run succeeds although its file is gone");
    }
    expectEqual("the events of a run whose file is gone", run.listener.milestones(),
                failedAndFinished);
}

void withoutSource(HostLibrary& host) {
    for (const Types& types : allTypes) {
        Run run(host, types);
        run.finish();
        expectEqual("the events of a run of types " + shown(types) + " without a source",
                    run.listener.milestones(), failedAndFinished);
        expectEqual("the last event", lastOf("events", run.listener.events()).event,
                    std::uint32_t{KOR::taskEventFinished});
    }
}

void afterNullSource(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    expectEqual("setSource() of null", run.analysis.setSource(nullptr, 0, 0), KOR::statusFailed);
    run.finish();
    expectEqual("the events of a run after setSource() of null", run.listener.milestones(),
                failedAndFinished);
}

bool isUtf8(const std::string& text) {
    // What is not UTF-8 is shown as bytes.
    return shown(text).find("\\x") == std::string::npos;
}

void sayWhy(HostLibrary& host) {
    Run run(host, {1});
    run.finish();
    for (const Told& told : run.listener.events()) {
        if (told.event != KOR::taskEventFailed) continue;
        expect(told.hasPayload, "event 3", "a payload", "null");
        expect(!told.reason.empty(), "the reason in event 3", "a text", "none");
        expect(told.reason.size() < sizeof(KOR::TaskEventPayload::reason), "the reason in event 3",
               "a terminating zero", "none");
        expect(isUtf8(told.reason), "the reason in event 3", "UTF-8", shown(told.reason));
    }
}

void haveNoResults(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1, 9}, video.source);
    run.finish();
    expect(run.count(1) > 0, "the scenes of the run before", "at least one", "none");
    run.analysis.setSource(nullptr, 0, 0);
    run.start();
    run.listener.waitForEnd(2);
    for (const std::int32_t kind : {1, 9})
        expectEqual("the results of kind " + shown(kind) + " of a failed run", run.count(kind), 0);
}

void emptyTheCache(HostLibrary& host) {
    const Material lost = lostMaterial(host);
    expect(!lost.cache().empty(), "media_cache before the run", "a text", "none");
    Run run(host, {1}, lost.source);
    std::string inside = "not asked";
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventFailed) inside = lost.cache();
    });
    finishFailing(run);
    expectEqual("media_cache inside event 3", inside, "");
    expectEqual("media_cache after the run", lost.cache(), "");
}

void emptyTheCacheAsValue(HostLibrary& host) {
    const Material lost = lostMaterial(host);
    Run run(host, {1}, lost.source);
    finishFailing(run);
    KOR::KorValue value;
    value.asText[0] = 'x';
    const KOR::Status status = lost.source->getMediaInfo("media_cache", &value);
    if (status != KOR::statusOk) skip("media_cache is not given as a value");
    expectEqual("media_cache as a value after the run", std::string(value.asText), "");
}

void stayEmpty(HostLibrary& host) {
    const Material lost = lostMaterial(host);
    Run run(host, {1}, lost.source);
    finishFailing(run);
    // The same file again, as far as a host can tell.
    std::filesystem::copy_file(host.videoFile(), lostFile(host));
    std::filesystem::last_write_time(lostFile(host),
                                     std::filesystem::last_write_time(host.videoFile()));
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("media_cache after another run, with the file there", lost.cache(), "");
}

void leaveOthersAlone(HostLibrary& host) {
    const Material other = host.video();
    const std::string before = other.cache();
    const Material lost = lostMaterial(host);
    Run run(host, {1}, lost.source);
    finishFailing(run);
    expect(!before.empty(), "media_cache of another material", "a text", "none");
    expectEqual("media_cache of another material", other.cache(), before);
}

void endAndGoOn(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1});
    run.finish();
    expectEqual("setSource()", run.analysis.setSource(video.source, 0, 0), KOR::statusOk);
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("the events of both runs", run.listener.milestones(), Milestones{3, 2, 2});
    expect(run.count(1) > 0, "the scenes of the second run", "at least one", "none");
}

}  // namespace

const std::vector<HostCheck> failedChecks = {
    {"failed.without-a-source", "A run without a source sends event 3 and then 2, of any type.",
     withoutSource},
    {"failed.after-null-source", "setSource of null takes the source before away.",
     afterNullSource},
    {"failed.say-why", "Event 3 carries a reason as UTF-8 text.", sayWhy},
    {"failed.have-no-results",
     "A failed run has no results, nor those of the run before, which is no failure to be asked "
     "for.",
     haveNoResults},
    {"failed.empty-the-cache",
     "From event 3 on, media_cache of a source on which a task failed is empty.", emptyTheCache},
    {"failed.empty-the-cache-as-value", "So it is as a value.", emptyTheCacheAsValue},
    {"failed.stay-empty", "It stays empty, even after a run that succeeds.", stayEmpty},
    {"failed.leave-others-alone", "A failure leaves other materials' media_cache as it is.",
     leaveOthersAlone},
    {"failed.end-and-go-on", "After a failed run the task runs for the next source as usual.",
     endAndGoOn},
};

}  // namespace validator
