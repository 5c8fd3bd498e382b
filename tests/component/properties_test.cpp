#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "fake_host/paths.h"
#include "fake_host/text.h"
#include "host/files.h"
#include "tests/component/PropertyCase.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using KeyFrames = std::vector<std::vector<KOR::KeyFrameScore>>;

RC_GTEST_PROP(ProgressProperty, StaysBetweenZeroAndOneHundred, ()) {
    Case run;
    const auto durations = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::int64_t>>(
        rc::gen::inRange<std::int64_t>(1, 1LL << 50)));
    const int tasks = *rc::gen::inRange(1, 8);
    const auto material = *rc::gen::inRange<std::size_t>(0, durations.size());
    const int task = *rc::gen::inRange(0, tasks);
    const int percent = *rc::gen::inRange(0, 101);
    for (const std::int64_t duration : durations)
        run.insert(video("clip.mp4", duration));
    run.useKinds(std::vector<std::int32_t>(static_cast<std::size_t>(tasks), 4));
    run.probe().moveTo(static_cast<std::int32_t>(material), task);
    const std::int32_t progress = run.probe().overallProgressAt(percent);
    RC_ASSERT(progress >= 0);
    RC_ASSERT(progress <= 100);
}

RC_GTEST_PROP(ProgressProperty, NeverFallsOverAWholeRun, ()) {
    Case run;
    const auto seconds =
        *rc::gen::resize(6, rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 100)));
    for (const int length : seconds)
        run.insert(video("clip.mp4", length * second));
    run.useKinds({4, 3});
    RecordingListener listener;
    run.component().addCallBack(&listener);
    run.component().start();
    while (FakeTask* const running = host().runningTask()) {
        for (const int percent : {0, 30, 60, 100})
            running->progress(percent);
        running->finish();
    }
    std::int32_t before = 0;
    for (const HeardEvent& heard : listener.heard()) {
        RC_ASSERT(heard.payload->progress >= before);
        before = heard.payload->progress;
    }
    RC_ASSERT(before == 100);
}

/// Scenes in ascending order without overlap, and ascending keyframes somewhere around them.
struct Footage {
    std::vector<KOR::ScenceRange> scenes;
    std::vector<std::int64_t> keyFrames;
    std::int64_t duration;
};

Footage someFootage() {
    Footage footage{{}, {}, 1000};
    const auto steps =
        *rc::gen::container<std::vector<std::int64_t>>(rc::gen::inRange<std::int64_t>(0, 40));
    std::int64_t at = 0;
    for (std::size_t i = 0; i + 1 < steps.size(); i += 2) {
        const std::int64_t begin = at + steps[i];
        at = begin + steps[i + 1];
        footage.scenes.push_back({begin, at});
    }
    footage.keyFrames = *rc::gen::container<std::vector<std::int64_t>>(
        rc::gen::inRange<std::int64_t>(0, std::max<std::int64_t>(at + 20, 20)));
    std::sort(footage.keyFrames.begin(), footage.keyFrames.end());
    footage.duration = at + 20;
    return footage;
}

/// With everything ascending, a scene simply gets the keyframes that lie in it.
KeyFrames expectedKeyFrames(const Footage& footage) {
    KeyFrames expected;
    for (std::size_t s = 0; s < footage.scenes.size(); ++s) {
        const auto [begin, end] = footage.scenes[s];
        const double score =
            (static_cast<double>(end - begin + 1) * 0.3) / static_cast<double>(footage.duration);
        expected.emplace_back();
        for (const std::int64_t pos : footage.keyFrames) {
            if (begin <= pos && pos < end) {
                expected.back().push_back({static_cast<std::int32_t>(s), score, pos});
            }
        }
    }
    return expected;
}

RC_GTEST_PROP(KeyFrameProperty, EachSceneGetsTheKeyFramesInIt, ()) {
    Case run;
    const Footage footage = someFootage();
    FakeMedia& material =
        run.insert(video("clip.mp4", footage.duration).keyFrames(footage.keyFrames));
    run.useKinds({3});
    host().task(0).setSource(&material, 0, 0);
    run.probe().moveTo(0, 0);
    run.probe().scenceRanges() = footage.scenes;
    RC_ASSERT(run.probe().keyFrameDetectFinishedInternal(&host().task(0)) == KOR::statusOk);
    RC_ASSERT(run.probe().keyFramesOfScences() == expectedKeyFrames(footage));
}

/// Walks any keyframes through any scenes, however they lie, with one cursor for all scenes.
std::vector<std::vector<std::int64_t>> walkedNaively(const std::vector<KOR::ScenceRange>& scenes,
                                                     const std::vector<std::int64_t>& keyFrames) {
    std::vector<std::vector<std::int64_t>> taken;
    std::size_t cursor = 0;
    for (const auto& scene : scenes) {
        taken.emplace_back();
        while (cursor < keyFrames.size() && keyFrames[cursor] < scene.end) {
            if (keyFrames[cursor] >= scene.begin) taken.back().push_back(keyFrames[cursor]);
            ++cursor;
        }
    }
    return taken;
}

RC_GTEST_PROP(KeyFrameProperty, WalkKeepsItsCursorInDisorder, ()) {
    Case run;
    const auto bounds = *rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(-20, 100), rc::gen::inRange(-20, 100)));
    const auto keyFrames =
        *rc::gen::container<std::vector<std::int64_t>>(rc::gen::inRange<std::int64_t>(-30, 110));
    FakeMedia& material = run.insert(video("clip.mp4", 100).keyFrames(keyFrames));
    run.useKinds({3});
    host().task(0).setSource(&material, 0, 0);
    run.probe().moveTo(0, 0);
    // A walk that stops at a keyframe at or past the end examines it for the next scene first.
    std::vector<KOR::ScenceRange> scenes;
    for (const auto& [begin, end] : bounds)
        scenes.push_back({begin, std::max(begin, end)});
    run.probe().scenceRanges() = scenes;
    run.probe().keyFrameDetectFinishedInternal(&host().task(0));
    std::vector<std::vector<std::int64_t>> taken;
    for (const auto& scene : run.probe().keyFramesOfScences()) {
        taken.emplace_back();
        for (const auto& keyFrame : scene)
            taken.back().push_back(keyFrame.pos);
    }
    RC_ASSERT(taken == walkedNaively(scenes, keyFrames));
}

RC_GTEST_PROP(RankingProperty, EqualsSortingEverything, ()) {
    Case run;
    const auto scores = *rc::gen::container<std::vector<std::vector<int>>>(
        rc::gen::container<std::vector<int>>(rc::gen::inRange(-5, 5)));
    // Positions differ all over, so that the order is settled; scores may be equal.
    KeyFrames keyFrames;
    std::int64_t pos = 1;
    for (std::size_t s = 0; s < scores.size(); ++s) {
        keyFrames.emplace_back();
        for (const int score : scores[s]) {
            pos = (pos * 7919) % 1000003;
            keyFrames.back().push_back({static_cast<std::int32_t>(s), score * 0.1, pos});
        }
    }
    run.probe().scenceRanges().assign(scores.size(), {0, 1});
    run.probe().keyFramesOfScences() = keyFrames;
    run.probe().scenceScores() = {{0, 0.5, 1}};
    run.probe().rankScenceScores();
    const auto ranked = run.probe().scenceScores();
    if (keyFrames.empty()) {
        RC_ASSERT(ranked == (std::vector<KOR::KeyFrameScore>{{0, 0.5, 1}}));
        return;
    }
    RC_ASSERT(std::is_sorted(ranked.begin(), ranked.end(),
                             [](const auto& a, const auto& b) { return a.pos < b.pos; }));
    std::size_t scenesWithKeyFrames = 0;
    for (const auto& scene : keyFrames)
        scenesWithKeyFrames += scene.empty() ? 0 : 1;
    RC_ASSERT(ranked.size() == scenesWithKeyFrames);
    for (const auto& best : ranked) {
        const auto& scene = keyFrames[static_cast<std::size_t>(best.scenceIndex)];
        RC_ASSERT(std::count(scene.begin(), scene.end(), best) == 1);
        for (const auto& other : scene)
            RC_ASSERT(other.score <= best.score);
    }
}

double anyFiniteDouble() {
    const auto bits = *rc::gen::arbitrary<std::uint64_t>();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? value : 0.5;
}

KOR::MaterialAnalysisResult anyRecord() {
    const auto time = rc::gen::arbitrary<std::int64_t>();
    return {anyFiniteDouble(),
            *time,
            *time,
            *time,
            nullptr,
            {*rc::gen::inRange(-9, 9) * 0.125, 0.25, 0.5, *rc::gen::inRange(0, 9) * 0.125}};
}

RC_GTEST_PROP(ResultFileProperty, ReadsBackToTheSameValues, ()) {
    Case run;
    const auto kinds = *rc::gen::arbitrary<std::vector<std::int32_t>>();
    std::vector<KOR::MaterialAnalysisResult> records;
    for (int i = *rc::gen::inRange(0, 6); i > 0; --i)
        records.push_back(anyRecord());
    run.probe().setAnalysisKindsOnly(kinds);
    run.probe().minScenceDuration() = *rc::gen::arbitrary<std::int64_t>();
    run.probe().scenceDetectionThreshold() = anyFiniteDouble();
    FakeMedia& material = run.make(video("clip.mp4", 1).cacheIn(host().directory()));
    std::vector<const KOR::MaterialAnalysisResult*> pointers;
    for (const auto& one : records)
        pointers.push_back(&one);
    RC_ASSERT(run.probe().saveMaterialAnalysisResult(&material, pointers));

    const auto root =
        nlohmann::ordered_json::parse(contentOf(host().directory() / "analysis" / "result.json"));
    std::string joinedKinds = joined(kinds);
    std::erase(joinedKinds, ' ');
    RC_ASSERT(root.size() == 5U);
    RC_ASSERT(root.at("version").get<std::string>() == "1.0.0.1");
    RC_ASSERT(root.at("analysisTypes").get<std::string>() == joinedKinds);
    RC_ASSERT(root.at("minScenceDuration").is_number_integer());
    RC_ASSERT(root.at("minScenceDuration").get<std::int64_t>() == run.probe().minScenceDuration());
    RC_ASSERT(root.at("scenceDetectionThreshold").get<double>() ==
              run.probe().scenceDetectionThreshold());
    RC_ASSERT(root.at("result").size() == records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto& element = root.at("result").at(i);
        RC_ASSERT(element.size() == 5U);
        RC_ASSERT(element.at("score").get<double>() == records[i].score);
        RC_ASSERT(element.at("begin").get<std::int64_t>() == records[i].begin);
        RC_ASSERT(element.at("end").get<std::int64_t>() == records[i].end);
        RC_ASSERT(element.at("posOfMaxScore").get<std::int64_t>() == records[i].posOfMaxScore);
        const auto face = KOR::StringUtil::split(element.at("faceRectOfPhoto"), ',');
        RC_ASSERT(face.size() == 4U);
        RC_ASSERT(std::stod(face[0]) == records[i].faceRectOfPhoto.x);
        RC_ASSERT(std::stod(face[3]) == records[i].faceRectOfPhoto.height);
    }
}

using Model = std::vector<KOR::IDmBaseMedia*>;

/// One step on the component's materials and on a plain vector that must end up the same.
void insertInto(Case& run, Model& model, const std::vector<FakeMedia*>& pool) {
    const auto picks = *rc::gen::resize(5, rc::gen::container<std::vector<std::size_t>>(
                                               rc::gen::inRange<std::size_t>(0, pool.size() + 1)));
    const auto position = *rc::gen::inRange<std::int32_t>(-3, 12);
    std::vector<FakeMedia*> elements;
    for (const std::size_t pick : picks) {
        elements.push_back(pick == pool.size() ? nullptr : pool[pick]);
    }
    run.component().insertMaterials(materialList(elements).get(), position);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (elements[i] == nullptr) continue;
        const auto size = static_cast<std::int64_t>(model.size());
        const auto at = std::clamp<std::int64_t>(position + static_cast<std::int64_t>(i), 0, size);
        model.insert(model.begin() + at, elements[i]);
    }
}

void removeFrom(Case& run, Model& model, const std::vector<FakeMedia*>& pool) {
    const auto picks = *rc::gen::resize(5, rc::gen::container<std::vector<std::size_t>>(
                                               rc::gen::inRange<std::size_t>(0, pool.size() + 1)));
    std::vector<FakeMedia*> elements;
    for (const std::size_t pick : picks) {
        elements.push_back(pick == pool.size() ? nullptr : pool[pick]);
    }
    run.component().removeMaterials(materialList(elements).get());
    for (std::size_t pass = 0; pass < elements.size(); ++pass) {
        for (std::size_t k = 0; k < model.size(); ++k) {
            if (k < elements.size() && elements[k] == model[k]) {
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(k));
            }
        }
    }
}

RC_GTEST_PROP(MaterialsProperty, FollowAPlainVector, ()) {
    Case run;
    std::vector<FakeMedia*> pool;
    for (const char* const name : {"a", "b", "c"})
        pool.push_back(&run.make(photo(name)));
    Model model;
    const int steps = *rc::gen::inRange(1, 12);
    for (int i = 0; i < steps; ++i) {
        switch (*rc::gen::inRange(0, 3)) {
            case 0:
                insertInto(run, model, pool);
                break;
            case 1:
                removeFrom(run, model, pool);
                break;
            default: {
                const auto index = *rc::gen::inRange<std::int32_t>(-2, 10);
                const bool inside = index >= 0 && static_cast<std::size_t>(index) < model.size();
                const KOR::Status status = run.component().removeMaterialAt(index);
                RC_ASSERT(status == (inside ? KOR::statusOk : KOR::statusFailed));
                if (inside) model.erase(model.begin() + index);
            }
        }
        RC_ASSERT(run.probe().materials() == model);
    }
    for (FakeMedia* const material : pool) {
        const auto held = std::count(model.begin(), model.end(), material);
        RC_ASSERT(material->refCount() == static_cast<std::uint32_t>(held) + 1);
    }
}

}  // namespace
}  // namespace fake_host
