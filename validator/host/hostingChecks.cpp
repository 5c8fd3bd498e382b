#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <thread>

#include "validator/host/Flag.h"
#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

/// Drives tasks over materials as the component does: scenes, keyframes, faces, entropy, each
/// prepared and started from inside the last event of the one before, the same tasks for one
/// material after another.
class Driver {
public:
    /// What came of one material.
    struct Outcome {
        std::vector<KOR::TickRange> scenes;
        std::vector<std::int64_t> keyFrames;
        std::int64_t faces = 0;
        std::int64_t entropies = 0;
        bool hasFailed = false;
        bool wasCacheEmpty = false;
    };

    Driver(const HostLibrary& host, std::vector<const Material*> materials)
        : materials_(std::move(materials)) {
        for (const std::int32_t type : {1, 9, 3, 8}) {
            Run& run = *runs_.emplace_back(std::make_unique<Run>(host, Types{type}));
            run.listener.doInside([this](const Told& told) { take(told); });
        }
    }

    /// Starts, and waits for the end of everything.
    void drive() {
        begin();
        if (isOver_.isSetWithin(patience)) return;
        failForTime("the end of task " + shown(step_) + " of material " + shown(material_),
                    "it is still on");
    }

    /// Is called inside the very last event.
    void atTheEnd(std::function<void()> action) { atTheEnd_ = std::move(action); }

    void releaseTasks() {
        for (const auto& run : runs_)
            run->task.reset();
    }

    const std::vector<Outcome>& outcomes() const { return outcomes_; }

private:
    bool isPhoto() const { return !isTimeBased(materials_[material_]->media->getMediaType()); }

    void begin() {
        outcomes_.emplace_back();
        step_ = isPhoto() ? 2 : 0;
        prepare();
    }

    void prepare() {
        Run& run = *runs_[step_];
        expectEqual("setSource()", run.analysis.setSource(materials_[material_]->source, 0, 0),
                    KOR::statusOk);
        run.task->setPriority(100);
        run.setMode(KOR::parameterModeDefault);
        if (!isPhoto()) {
            if (step_ == 1) run.setRanges(outcomes_.back().scenes);
            if (step_ >= 2) run.setPositions(outcomes_.back().keyFrames);
        }
        run.start();
    }

    void take(const Told& told) {
        Outcome& outcome = outcomes_.back();
        if (told.event == KOR::taskEventFailed) {
            outcome.hasFailed = true;
            outcome.wasCacheEmpty = materials_[material_]->cache().empty();
        }
        if (told.event != KOR::taskEventFinished) return;
        const Run& run = *runs_[step_];
        if (step_ == 0) outcome.scenes = run.scenes();
        if (step_ == 1) outcome.keyFrames = run.keyFrames();
        if (step_ == 2) outcome.faces = run.count(3);
        if (step_ == 3) outcome.entropies = run.count(8);
        advance();
    }

    void advance() {
        ++step_;
        if (step_ < runs_.size() && !(isPhoto() && step_ == 3)) return prepare();
        ++material_;
        if (material_ < materials_.size()) return begin();
        if (atTheEnd_) atTheEnd_();
        isOver_.set();
    }

    const std::vector<const Material*> materials_;
    std::vector<Outcome> outcomes_;
    std::size_t material_ = 0;
    std::size_t step_ = 0;
    std::function<void()> atTheEnd_;
    Flag isOver_;
    std::vector<std::unique_ptr<Run>> runs_;
};

void expectWhole(const HostLibrary& host, const Driver::Outcome& outcome) {
    expectEqual("whether a task failed", outcome.hasFailed, false);
    expect(!outcome.scenes.empty(), "the scenes", "at least one", "none");
    expect(outcome.keyFrames.size() >= outcome.scenes.size(), "the keyframes",
           "at least one for each scene", shown(outcome.keyFrames));
    expectEqual("the face frames", outcome.faces,
                static_cast<std::int64_t>(outcome.keyFrames.size()));
    expectEqual("the entropy samples", outcome.entropies, outcome.faces);
    if (host.hasOurVideo()) {
        expectEqual("the number of scenes", outcome.scenes.size(), std::size_t{3});
    }
}

void drivesOne(HostLibrary& host) {
    const Material video = host.video();
    Driver driver(host, {&video});
    driver.drive();
    expectWhole(host, driver.outcomes().at(0));
}

void drivesMany(HostLibrary& host) {
    const Material video = host.video();
    const Material photo = host.photo();
    Driver driver(host, {&video, &photo, &video, &photo});
    driver.drive();
    for (const std::size_t i : {0U, 2U})
        expectWhole(host, driver.outcomes().at(i));
    for (const std::size_t i : {1U, 3U})
        expectEqual("the face frames of a photo", driver.outcomes().at(i).faces, 1);
}

void goesOnAfterFailure(HostLibrary& host) {
    const auto file = host.occasion().scratch / ("lost" + host.videoFile().extension().string());
    std::filesystem::copy_file(host.videoFile(), file);
    const Material lost = host.material(file);
    std::filesystem::remove(file);
    const Material video = host.video();
    Driver driver(host, {&lost, &video});
    driver.drive();
    const Driver::Outcome& first = driver.outcomes().at(0);
    if (!first.hasFailed) skip("runs succeed although their file is gone");
    expectEqual("whether media_cache was empty inside event 3", first.wasCacheEmpty, true);
    expectEqual("the scenes of the material whose file is gone", first.scenes.size(),
                std::size_t{0});
    expectWhole(host, driver.outcomes().at(1));
}

void endsInside(HostLibrary& host) {
    const Material video = host.video();
    Driver driver(host, {&video});
    driver.atTheEnd([&] { driver.releaseTasks(); });
    driver.drive();
    expectWhole(host, driver.outcomes().at(0));
}

void leavesNothing(HostLibrary& host) {
    Material video = host.video();
    {
        Driver driver(host, {&video});
        driver.drive();
    }
    expectEqual("refCount() of the material when all tasks have gone", video.object->refCount(), 1);
    expectEqual("the last release() of the material", video.object.release()->release(), 0);
}

void drivesSideBySide(HostLibrary& host) {
    const Material first = host.video();
    const Material second = host.video();
    const auto drive = [&](const Material& material) {
        Driver driver(host, {&material});
        driver.drive();
        expectWhole(host, driver.outcomes().at(0));
    };
    std::exception_ptr problem;
    std::thread other([&] {
        try {
            drive(second);
        } catch (...) {
            problem = std::current_exception();
        }
    });
    try {
        drive(first);
    } catch (...) {
        problem = std::current_exception();
    }
    other.join();
    if (problem) std::rethrow_exception(problem);
}

}  // namespace

const std::vector<HostCheck> hostingChecks = {
    {"hosting.drives-one-material",
     "Scenes, keyframes, faces and entropy of a video, each task started inside the last event of "
     "the one before.",
     drivesOne},
    {"hosting.drives-many-materials", "The same tasks go through videos and photos in turn.",
     drivesMany},
    {"hosting.goes-on-after-a-failure",
     "All tasks of a material that cannot be read end, and the next material is analysed.",
     goesOnAfterFailure},
    {"hosting.ends-inside-the-last-event", "All tasks may be released inside the very last event.",
     endsInside},
    {"hosting.leaves-nothing", "When all tasks have gone, none holds the material.", leavesNothing},
    {"hosting.drives-side-by-side", "Two drivers go through their materials at the same time.",
     drivesSideBySide},
};

}  // namespace validator
