#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// The end of a component in the middle of a run.
class Destruction : public RunTest {
protected:
    /// Inserts a material that only the component holds.
    void giveAway(const MediaSpec& spec) {
        const Owned<FakeMedia> own(new FakeMedia(spec));
        component().insertMaterials(materialList({own.get()}).get(), 0);
    }
};

TEST_F(Destruction, ReleasesMaterialsThenTasksThenRecords) {
    giveAway(video("waiting.mp4", 100 * second));
    giveAway(video("running.mp4", 100 * second));
    giveAway(photo("photo.jpg"));
    useKinds({4, 3});
    component().start();
    host().takeJournal();
    releaseComponent();
    // The first task holds the video that it works on, and the photo's record the photo.
    EXPECT_EQ(trace(), R"(
waiting.mp4 destruction
task0.destruction
running.mp4 destruction
task1.destruction
photo.jpg destruction
)");
}

TEST_F(Destruction, NeitherStopsTasksNorTellsListeners) {
    giveAway(video("clip.mp4", 100 * second));
    useKinds({4});
    component().start();
    host().takeJournal();
    releaseComponent();
    EXPECT_EQ(trace(), R"(
task0.destruction
clip.mp4 destruction
)");
    EXPECT_TRUE(listener.events().empty());
}

TEST_F(Destruction, StartsNoTaskForAFinishThatComesInIt) {
    insert(video("clip.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    task(1).onCall("destruction", [this] {
        task(1).send(KOR::taskEventCategory, KOR::taskEventFinished, nullptr);
    });
    releaseComponent();
    EXPECT_EQ(host().startCount, 1);
    EXPECT_TRUE(listener.events().empty());
}

}  // namespace
}  // namespace fake_host
