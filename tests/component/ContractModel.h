#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "host/status.h"

namespace fake_host {

/// What does not work in the fake host, for the host and for the model of it alike.
struct HostFaults {
    std::map<Product, std::set<int>> failingMakings;  ///< counted from 1
    std::set<Product> failingAppends;
    bool loggerAbsent = false;
    bool severityDisabled = false;
    bool logStreamsFail = false;
    bool directoriesFail = false;
    bool removalsFail = false;
    bool tasksFinishInsideStart = false;
};

/// What a listener does inside an event.
enum class ListenerAct { nothing, stop, start };

/// Says what a component does, call for call, on the fake host: plain values, written down from
/// what is promised to hosts, and sharing nothing with the component. Slow, and as literal as can
/// be.
///
/// Where hosts are promised nothing, it says what is sensible: the first of several best keyframes,
/// in a ranking of equal positions the earlier scene, and nothing for what is not there.
class ContractModel {
public:
    struct Record {
        double score;
        std::int64_t begin;
        std::int64_t end;
        std::int64_t posOfMaxScore;
        std::size_t media;  ///< index into `media`
        KOR::KorRect face;
    };

    /// A result file, as far as it means something to its reader.
    struct ResultFile {
        bool parses = true;
        std::optional<std::string> version;
        std::optional<std::string> kinds;
        std::optional<std::int64_t> minScenceDuration;
        std::optional<double> threshold;
        std::optional<std::vector<Record>> records;
    };

    /// What stands below one media cache.
    struct Place {
        bool hasDirectory = false;     ///< "analysis" is a directory
        bool hasFileInstead = false;   ///< "analysis" is a file
        bool fileIsDirectory = false;  ///< "result.json" is a directory
        std::optional<ResultFile> file;
    };

    struct Task {
        std::vector<std::int32_t> types;
        bool running = false;
        std::optional<std::size_t> source;  ///< index into `media`
        std::set<std::string> failing;      ///< operations that answer statusFailed
        std::set<std::size_t> lostElements;
        bool interfaceHidden = false;
        bool stopsSilently = false;
    };

    // The world around the component.
    HostFaults faults;
    std::vector<MediaSpec> media;
    std::map<std::string, Place> places;  ///< by media cache
    std::vector<std::string> listeners;   ///< names; the first one acts
    std::map<int, ListenerAct> acts;      ///< by which call of the first listener, from 1

    // What the component holds.
    std::vector<std::size_t> materials;  ///< indices into `media`
    std::vector<Task> tasks;
    std::vector<std::int32_t> kinds;
    std::vector<Record> records;
    std::int64_t minScenceDuration = 2;
    double threshold = 3.0;
    std::int64_t minNeedAnalysisDuartion = 2;
    std::int32_t photoNeedAnalysis = 0;
    std::uint32_t priority = 100;
    std::int32_t materialIndex = -1;
    std::int32_t taskIndex = -1;

    void setKinds(const std::vector<std::int32_t>& list);
    KOR::Status start();
    void stop();

    /// A task sends an event; none for null. Nothing depends on which one does.
    void event(std::uint32_t category, std::uint32_t event, std::optional<std::int32_t> percent);

    /// A task reports its end.
    void finish(std::size_t task);

    /// Whether hosts are promised anything for an end that is reported now. After the end of a run
    /// there is no material left whose task could have come to its end.
    bool finishIsDefined() const;

    /// The task that a photo gets first; -1 for none. 0 is one that no run gets past.
    std::int32_t photoChoice() const;

    /// Everything that went on at the component's border since the last call, in the fake host's
    /// words. A "*" stands for what hosts are promised nothing about.
    std::vector<std::string> takeJournal();

    /// How often one of these was made, or should have been.
    int makings(Product product) const;

private:
    struct Range {
        std::int64_t begin;
        std::int64_t end;
    };
    struct KeyFrame {
        std::size_t scene;
        double score;
        std::int64_t pos;
    };

    template <typename Result>
    using Found = std::optional<std::vector<std::optional<Result>>>;

    KOR::Status step();
    KOR::Status takeIn();
    void advance();
    void select();
    KOR::Status startCurrent();
    KOR::Status start(std::size_t task, std::int32_t kind);
    KOR::Status startTask(std::size_t task);
    void prepare(std::size_t task, std::int32_t mode, KOR::Status& status);
    void handPositions(std::size_t task, KOR::Status& status);
    void handRanges(std::size_t task, KOR::Status& status);
    void handBlock(std::size_t task, const std::string& arguments, KOR::Status& status);
    void note(std::size_t task, const std::string& call);

    KOR::Status scenesFinished(Task* task);
    KOR::Status keyFramesFinished(Task* task);
    KOR::Status bothFinished(Task* task);
    KOR::Status facesFinished(Task* task);
    KOR::Status entropyFinished(Task* task);
    void walkKeyFrames(Task& task);
    void scoreFaces(const Found<KOR::FaceDetectFrame>& found);
    void scoreEntropy(Task& task);
    void rank();
    void buildRecords();
    void addDefaultRecord();
    void finishAll();
    template <typename Result>
    Found<Result> fetch(Task& task, std::int32_t type,
                        const std::vector<Result> MediaSpec::*results);

    void save(const std::vector<Record>& ofMaterial);
    bool restore();
    const char* rejection(const ResultFile& file) const;
    std::string kindsText() const;

    void notify(std::uint32_t event, const std::string& percent);
    std::string overallProgress(std::int32_t percent) const;
    bool makes(Product product);
    void log(const std::string& function, const std::string& text);
    void logFinish(const std::string& function, const std::string& text);
    const MediaSpec& current() const { return media[currentMedia()]; }
    std::size_t currentMedia() const { return materials[static_cast<std::size_t>(materialIndex)]; }
    std::int32_t kind() const;
    Task* currentTask();
    bool isLastTask() const;

    bool cancelled_ = false;
    std::vector<Range> scenes_;
    std::vector<std::vector<KeyFrame>> keyFrames_;
    std::vector<KeyFrame> best_;
    std::map<Product, int> made_;
    int listenerCalls_ = 0;
    std::vector<std::string> journal_;
};

}  // namespace fake_host
