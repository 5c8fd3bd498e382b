// Restoring from result files, next to what the JSON library needs merely to parse them.

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include "fake_host/Counted.h"
#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "host/lists.h"
#include "tests/support/ComponentProbe.h"

namespace fake_host {
namespace {

constexpr std::int64_t second = KOR::ticksPerSecond;

/// A component with `count` videos, each with a result file of its own of `records` records.
class KeptResults {
public:
    KeptResults(std::int64_t count, std::int64_t records) {
        host().reset();
        host().recording = false;
        host().faults.severityDisabled = true;
        component_.reset(createMaterialAnalysis());
        const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
        for (std::int64_t i = 0; i < count; ++i) {
            const std::filesystem::path cache = host().directory() / std::to_string(i);
            files_.push_back(cache / "analysis" / "result.json");
            materials_.emplace_back(
                new FakeMedia(video("clip.mp4", records * 10 * second).cacheIn(cache)));
            list->append(asElement(*materials_.back()));
            save(*materials_.back(), records);
        }
        component_->insertMaterials(list.get(), 0);
    }
    ~KeptResults() {
        component_.reset();
        materials_.clear();
        host().reset();
    }
    KeptResults(const KeptResults&) = delete;
    KeptResults& operator=(const KeptResults&) = delete;

    /// Has the component restore all of them. Returns how many records it then has.
    std::size_t restoreAll() {
        component_->start();
        return KOR::ComponentProbe(*component_).resultCount();
    }

    /// Reads all files and parses them, exact doubles and no recursion. Returns how many records
    /// they hold.
    std::size_t parseAll() const {
        std::size_t records = 0;
        for (const std::filesystem::path& file : files_) {
            std::string text(std::filesystem::file_size(file), '\0');
            std::ifstream(file).read(text.data(), static_cast<std::streamsize>(text.size()));
            rapidjson::Document root;
            root.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag>(
                text.c_str());
            records += root["result"].Size();
        }
        return records;
    }

private:
    /// Scores as they come about: sums of three products, with all their digits.
    void save(FakeMedia& material, std::int64_t records) {
        std::vector<KOR::MaterialAnalysisResult> results;
        for (std::int64_t i = 0; i < records; ++i) {
            const double score = 0.3 / static_cast<double>(records) + 0.07 * static_cast<double>(i);
            results.push_back({score,
                               i * 10 * second,
                               (i + 1) * 10 * second,
                               i * 10 * second + 3 * second,
                               nullptr,
                               {}});
        }
        std::vector<const KOR::MaterialAnalysisResult*> pointers;
        for (const KOR::MaterialAnalysisResult& result : results)
            pointers.push_back(&result);
        KOR::ComponentProbe(*component_).saveMaterialAnalysisResult(&material, pointers);
    }

    std::vector<std::filesystem::path> files_;
    std::vector<Owned<FakeMedia>> materials_;
    Owned<KOR::IKorMaterialAnalysis> component_;
};

/// Returns the CPU time, which other programs disturb the least.
template <typename Work>
double secondsOf(const Work& work) {
    const std::clock_t begin = std::clock();
    benchmark::DoNotOptimize(work());
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// The time is that of a run which restores everything, with a log that wants no lines; "to bare
/// parsing" is how many times as long it takes as parseAll, both measured in turn.
void Restoring(benchmark::State& state) {
    KeptResults kept(state.range(0), state.range(1));
    if (kept.restoreAll() != kept.parseAll()) {
        state.SkipWithError("not all records were restored");
        return;
    }
    double restoring = 0;
    double parsing = 0;
    for (auto _ : state) {
        const double seconds = secondsOf([&] { return kept.restoreAll(); });
        parsing += secondsOf([&] { return kept.parseAll(); });
        restoring += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["to bare parsing"] = restoring / parsing;
    state.counters["each record"] = benchmark::Counter(
        static_cast<double>(state.range(0) * state.range(1)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Restoring)
    ->Args({10, 200})
    ->Args({1000, 200})
    ->Args({1, 200000})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace fake_host
