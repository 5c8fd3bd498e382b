#include <gtest/gtest.h>

#include "autotrim/Materials.h"
#include "tests/autotrim/FakeComponent.h"

namespace autotrim {
namespace {

/// A component that was interrupted when it had given the only material its default record.
class Interrupted {
public:
    Interrupted() {
        component_.onInsert = [this](KOR::IKORVoidPtrList* list) {
            auto* const object = static_cast<KOR::IDmBaseObj*>(list->at(0));
            media_ = static_cast<KOR::IDmBaseMedia*>(object->queryInterface("IDmBaseMedia"));
            return KOR::statusOk;
        };
        component_.onGetResults = [this](KOR::IKORVoidPtrList* list) {
            media_->addRef();
            media_->addRef();
            void* const block = ::operator new(sizeof(KOR::MaterialAnalysisResult));
            return list->append(new (block) KOR::MaterialAnalysisResult{1.0, 0, 1, 0, media_, {}});
        };
    }

    /// What is then reported of the made photo.
    FileReport photoBy(const Options& options) {
        Materials materials;
        EXPECT_EQ(materials.open(AUTOTRIM_CLIPS "/photo.png", {}, {}), "");
        materials.insertInto(component_);
        return materials.reports(component_, RunEnd::interrupted, options).at(0);
    }

private:
    FakeComponent component_;
    KOR::IDmBaseMedia* media_ = nullptr;
};

TEST(Materials, HoldAPhotoThatAwaitsFacesForUnfinished) {
    for (const Kinds& kinds : {Kinds{6, 7}, Kinds{6, 1}}) {
        Options options;
        options.kinds = kinds;
        options.photos = true;
        const FileReport photo = Interrupted().photoBy(options);
        EXPECT_EQ(photo.outcome, Outcome::failed);
        EXPECT_EQ(photo.error, "interrupted");
    }
}

TEST(Materials, KeepTheRecordOfAPhotoThatAwaitsNothing) {
    Options options;
    EXPECT_EQ(Interrupted().photoBy(options).outcome, Outcome::byDefault);
    options.photos = true;
    options.kinds = {6, 5};
    const FileReport photo = Interrupted().photoBy(options);
    EXPECT_EQ(photo.outcome, Outcome::byDefault);
    EXPECT_EQ(photo.results.size(), 1U);
}

}  // namespace
}  // namespace autotrim
