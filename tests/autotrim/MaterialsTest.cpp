#include <gtest/gtest.h>
#include <sys/stat.h>

#include "autotrim/Materials.h"
#include "tests/autotrim/CachedFootage.h"
#include "tests/autotrim/FakeComponent.h"

namespace autotrim {
namespace {

using std::filesystem::path;

Materials opened(const std::vector<std::string>& files, const path& cacheRoot) {
    std::vector<OpenedFile> opened;
    for (const std::string& file : files) {
        opened.push_back(openFile(file, cacheRoot, {}));
        EXPECT_EQ(opened.back().error, "");
    }
    return Materials(std::move(opened));
}

/// A component that has given each of its materials one record.
class OneRecordEach {
public:
    explicit OneRecordEach(std::int64_t posOfMaxScore = 0) : posOfMaxScore_(posOfMaxScore) {
        component_.onInsert = [this](KOR::IKORVoidPtrList* list) {
            for (std::int64_t i = 0; i < list->count(); ++i) {
                auto* const object = static_cast<KOR::IDmBaseObj*>(list->at(i));
                media_.push_back(
                    static_cast<KOR::IDmBaseMedia*>(object->queryInterface("IDmBaseMedia")));
            }
            return KOR::statusOk;
        };
        component_.onGetResults = [this](KOR::IKORVoidPtrList* list) {
            for (KOR::IDmBaseMedia* media : media_)
                append(*list, *media);
            return KOR::statusOk;
        };
    }

    /// Returns what is then reported of `files`.
    std::vector<FileReport> reportsOf(const std::vector<std::string>& files, const path& cacheRoot,
                                      RunEnd end, const Options& options) {
        Materials materials = opened(files, cacheRoot);
        const Share all = dealOut(materials.work(options), 1).at(0);
        materials.insertInto(component_, all);
        materials.takeResults(component_, all, end, options);
        return materials.reports();
    }

    std::size_t materials() const { return media_.size(); }

private:
    void append(KOR::IKORVoidPtrList& list, KOR::IDmBaseMedia& media) const {
        media.addRef();
        media.addRef();
        void* const block = ::operator new(sizeof(KOR::MaterialAnalysisResult));
        list.append(new (block) KOR::MaterialAnalysisResult{1.0, 0, 1, posOfMaxScore_, &media, {}});
    }

    std::int64_t posOfMaxScore_;
    FakeComponent component_;
    std::vector<KOR::IDmBaseMedia*> media_;
};

FileReport interruptedPhoto(const Options& options) {
    return OneRecordEach()
        .reportsOf({AUTOTRIM_CLIPS "/photo.png"}, {}, RunEnd::interrupted, options)
        .at(0);
}

TEST(Materials, HoldAPhotoThatAwaitsFacesForUnfinished) {
    for (const Kinds& kinds : {Kinds{6, 7}, Kinds{6, 1}}) {
        Options options;
        options.kinds = kinds;
        options.photos = true;
        const FileReport photo = interruptedPhoto(options);
        EXPECT_EQ(photo.outcome, Outcome::failed);
        EXPECT_EQ(photo.error, "interrupted");
    }
}

TEST(Materials, KeepTheRecordOfAPhotoThatAwaitsNothing) {
    Options options;
    EXPECT_EQ(interruptedPhoto(options).outcome, Outcome::byDefault);
    options.photos = true;
    options.kinds = {6, 5};
    const FileReport photo = interruptedPhoto(options);
    EXPECT_EQ(photo.outcome, Outcome::byDefault);
    EXPECT_EQ(photo.results.size(), 1U);
}

using Work = std::vector<std::int64_t>;

TEST(Materials, AreWorkAsFarAsTheyAreAnalysed) {
    const Materials materials = opened(
        {AUTOTRIM_CLIPS "/two.mp4", AUTOTRIM_CLIPS "/photo.png", AUTOTRIM_CLIPS "/short.mp4"}, {});
    Options options;
    EXPECT_EQ(materials.work(options), (Work{10000, 0, 0}));
    options.minLengthSeconds = 0;
    EXPECT_EQ(materials.work(options), (Work{10000, 0, 5000}));
    options.minLengthSeconds = 6;
    options.photos = true;
    EXPECT_EQ(materials.work(options), (Work{0, 4000, 0}));
    options.kinds = {6, 5};
    EXPECT_EQ(materials.work(options), (Work{0, 0, 0}));
}

TEST(Materials, OfFilesThatAreNoneAreNone) {
    std::vector<OpenedFile> files;
    files.push_back({"missing.mp4", "there is no such file", {}, nullptr});
    const Materials materials(std::move(files));
    EXPECT_EQ(materials.work({}), Work{});
    const std::vector<FileReport> reports = materials.reports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].file, "missing.mp4");
    EXPECT_EQ(reports[0].error, "there is no such file");
    EXPECT_EQ(reports[0].outcome, Outcome::failed);
}

class MaterialsInACache : public CachedFootage {
protected:
    /// What is reported of a video without a task, at a keyframe in which an earlier run has looked
    /// for faces.
    FileReport unanalysed(const Options& options) const {
        const Json earlier =
            analyse({"--kinds", "4,3,1", "--min-length", "0", "--min-scene", "0", "short.mp4"});
        const Json& record = earlier[0]["results"][0];
        EXPECT_EQ(record["faces"], 0);
        return OneRecordEach(record["posOfMaxScore"])
            .reportsOf({AUTOTRIM_CLIPS "/short.mp4"}, cache(), RunEnd::complete, options)
            .at(0);
    }
};

TEST_F(MaterialsInACache, CountTheFacesOfRestoredRecords) {
    Options options;
    options.minLengthSeconds = 0;
    const FileReport report = unanalysed(options);
    EXPECT_EQ(report.outcome, Outcome::restored);
    EXPECT_EQ(report.results.at(0).faces, 0);
}

TEST_F(MaterialsInACache, LeaveFacesOpenThatTheRunDidNotLookFor) {
    Options options;
    options.minLengthSeconds = 0;
    options.kinds = {4, 3};
    const FileReport report = unanalysed(options);
    EXPECT_EQ(report.outcome, Outcome::restored);
    EXPECT_FALSE(report.results.at(0).faces);
}

TEST_F(MaterialsInACache, LeaveFacesOpenInDefaultRecords) {
    const FileReport report = unanalysed({});
    EXPECT_EQ(report.outcome, Outcome::byDefault);
    EXPECT_FALSE(report.results.at(0).faces);
}

TEST_F(MaterialsInACache, AreOneForFilesOfTheSameContent) {
    const std::string one = copyOf("short.mp4", "one.mp4").string();
    const std::string other = copyOf("short.mp4", "other.mp4").string();
    const std::string photo = copyOf("photo.png", "photo.png").string();
    OneRecordEach component;
    const auto reports =
        component.reportsOf({one, photo, other, one}, {}, RunEnd::complete, Options());
    EXPECT_EQ(component.materials(), 2U);
    ASSERT_EQ(reports.size(), 4U);
    EXPECT_EQ(reports[0].file, one);
    EXPECT_EQ(reports[1].file, photo);
    EXPECT_EQ(reports[2].file, other);
    EXPECT_EQ(reports[3].file, one);
    for (const FileReport& report : reports)
        EXPECT_EQ(report.results.size(), 1U);
}

TEST_F(MaterialsInACache, DoNotWaitForAPipeThatTheyFindThere) {
    const Materials materials = opened({AUTOTRIM_CLIPS "/two.mp4"}, cache());
    FileReport analysed;
    analysed.type = MaterialType::video;
    analysed.outcome = Outcome::analysed;
    EXPECT_FALSE(materials.allKept({analysed}));
    const path directory = kept().at(0).parent_path() / "analysis";
    std::filesystem::create_directory(directory);
    ASSERT_EQ(mkfifo((directory / "result.json").c_str(), 0666), 0);
    EXPECT_FALSE(materials.allKept({analysed}));
}

}  // namespace
}  // namespace autotrim
