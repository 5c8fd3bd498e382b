#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

class Events3And4 : public RunTest {
protected:
    Events3And4() {
        insert(video("a.mp4", 100 * second));
        useKinds({4, 3});
        component().start();
    }
};

TEST_F(Events3And4, AreForwardedAsTheyAre) {
    KOR::TaskEventPayload payload{};
    payload.progress = 77;
    task(0).send(1, 3, &payload);
    task(0).send(1, 4, &payload);
    ASSERT_EQ(listener.events(), (Events{3, 4}));
    for (const HeardEvent& heard : listener.heard()) {
        EXPECT_EQ(heard.payloadAddress, static_cast<void*>(&payload));
        EXPECT_EQ(heard.payload->progress, 77);
        EXPECT_EQ(heard.sender, static_cast<KOR::IDmBaseObj*>(&component()));
    }
}

TEST_F(Events3And4, AreForwardedWithoutAPayload) {
    task(0).send(1, 3, nullptr);
    task(0).send(1, 4, nullptr);
    ASSERT_EQ(listener.events(), (Events{3, 4}));
    EXPECT_EQ(listener.heard()[0].payloadAddress, nullptr);
    EXPECT_EQ(listener.heard()[1].payloadAddress, nullptr);
}

TEST_F(Events3And4, OtherEventsAreIgnored) {
    KOR::TaskEventPayload payload{};
    for (const std::uint32_t event : {0U, 5U, 6U, 0xFFFFFFFFU})
        task(0).send(1, event, &payload);
    EXPECT_TRUE(listener.heard().empty());
    EXPECT_FALSE(task(1).running());
}

TEST_F(Events3And4, OtherCategoriesAreIgnored) {
    KOR::TaskEventPayload payload{};
    for (const std::uint32_t category : {0U, 2U, 0xFFFFFFFFU}) {
        for (const std::uint32_t event : {1U, 2U, 3U, 4U})
            task(0).send(category, event, &payload);
    }
    EXPECT_TRUE(listener.heard().empty());
    EXPECT_FALSE(task(1).running());
}

class Stopping : public RunTest {
protected:
    Stopping() {
        insert(video("a.mp4", 100 * second));
        useKinds({4, 3});
        component().start();
        task(0).stopSilently();
        host().takeJournal();
    }
};

TEST_F(Stopping, StopsEveryTaskInOrderWithoutAnEvent) {
    EXPECT_EQ(component().stop(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.stop
task1.stop
)");
}

TEST_F(Stopping, StopsTheOtherTasksWhenOneFails) {
    task(0).answer("stop", KOR::statusFailed);
    EXPECT_EQ(component().stop(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.stop
task1.stop
)");
}

TEST_F(Stopping, LaterFinishDoesNothing) {
    component().stop();
    host().takeJournal();
    task(0).finish();
    EXPECT_EQ(journal(), Lines());
    EXPECT_EQ(probe().currentTaskIndex(), 0);
}

TEST_F(Stopping, LaterProgressAndEventsAreForwarded) {
    component().stop();
    task(0).progress(50);
    task(0).send(1, 3, nullptr);
    task(0).send(1, 4, nullptr);
    EXPECT_EQ(listener.events(), (Events{1, 3, 4}));
}

TEST_F(Stopping, InsideAFinishStartsNoOtherTask) {
    task(0).onCall("getResultList", [this] { component().stop(); });
    task(0).finish();
    EXPECT_EQ(host().startCount, 1);
    EXPECT_TRUE(listener.heard().empty());
}

TEST_F(Stopping, BeforeAnyRunIsHarmless) {
    component().stop();
    EXPECT_EQ(component().stop(), KOR::statusOk);
    component().start();
    EXPECT_TRUE(task(0).running());
}

}  // namespace
}  // namespace fake_host
