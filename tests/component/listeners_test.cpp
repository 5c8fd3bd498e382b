#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

/// What a listener does is tried in each kind of notification: 1 to 4, where 2 is the run's end.
class InEveryNotification : public ComponentTest,
                            public testing::WithParamInterface<std::uint32_t> {
protected:
    InEveryNotification() {
        insert(video("clip.mp4", 100 * second));
        useKinds({6});
        component().addCallBack(&first);
        component().addCallBack(&last);
        component().start();
        host().takeJournal();
    }

    /// Lets the component send the notification under test. The task may be gone afterwards.
    void notify() {
        if (GetParam() == KOR::taskEventFinished) {
            task(0).finish();
        } else {
            KOR::TaskEventPayload payload{};
            task(0).send(1, GetParam(), &payload);
        }
    }

    /// Sends an ordinary event, which every listener that is left hears.
    void notifyAgain() { task(0).send(1, KOR::taskEventFailed, nullptr); }

    /// Runs `action` once, inside the first notification.
    void once(RecordingListener& listener, const std::function<void()>& action) {
        listener.onEvent = [&listener, action](std::uint32_t) {
            // The action may end the closure, so it is kept on the stack.
            const std::function<void()> kept = action;
            listener.onEvent = nullptr;
            kept();
        };
    }

    RecordingListener first{"first"};
    RecordingListener last{"last"};
};

INSTANTIATE_TEST_SUITE_P(Event, InEveryNotification, testing::Values(1U, 2U, 3U, 4U));

TEST_P(InEveryNotification, ListenersAreToldInOrder) {
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
    const Lines lines = journal();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2].substr(0, 6), "first:");
    EXPECT_EQ(lines[lines.size() - 1].substr(0, 5), "last:");
}

TEST_P(InEveryNotification, NoExtraReferenceShows) {
    std::uint32_t seen = 0;
    first.onEvent = [&](std::uint32_t) { seen = component().refCount(); };
    notify();
    EXPECT_EQ(seen, 1U);
}

TEST_P(InEveryNotification, ListenerMayRemoveItself) {
    once(first, [&] { component().removeCallBack(&first); });
    notify();
    notifyAgain();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_EQ(last.events(), (Events{GetParam(), 3}));
}

TEST_P(InEveryNotification, RemovedListenerIsNotCalledAnyMore) {
    once(first, [&] { component().removeCallBack(&last); });
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_TRUE(last.heard().empty());
}

TEST_P(InEveryNotification, ListenerToldAlreadyMayBeRemoved) {
    RecordingListener behind("behind");
    component().addCallBack(&behind);
    once(last, [&] { component().removeCallBack(&first); });
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_EQ(last.events(), Events{GetParam()});
    EXPECT_EQ(behind.events(), Events{GetParam()});
}

TEST_P(InEveryNotification, AllListenersMayBeRemoved) {
    once(first, [&] {
        component().removeCallBack(&first);
        component().removeCallBack(&last);
    });
    notify();
    notifyAgain();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_TRUE(last.heard().empty());
}

TEST_P(InEveryNotification, RemovedListenerMayDie) {
    auto doomed = std::make_unique<RecordingListener>("doomed");
    component().removeCallBack(&last);
    component().addCallBack(doomed.get());
    once(first, [&] {
        component().removeCallBack(doomed.get());
        doomed.reset();
    });
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
}

TEST_P(InEveryNotification, AddedListenerHearsFromTheNextOn) {
    RecordingListener added("added");
    once(first, [&] { component().addCallBack(&added); });
    notify();
    EXPECT_TRUE(added.heard().empty());
    notifyAgain();
    EXPECT_EQ(added.events(), Events{3});
}

TEST_P(InEveryNotification, ListenerRemovedAndAddedAgainWaitsForTheNext) {
    once(first, [&] {
        component().removeCallBack(&last);
        component().addCallBack(&last);
    });
    notify();
    EXPECT_TRUE(last.heard().empty());
    notifyAgain();
    EXPECT_EQ(last.events(), Events{3});
}

TEST_P(InEveryNotification, ManyListenersMayBeAdded) {
    std::vector<std::unique_ptr<RecordingListener>> many;
    once(first, [&] {
        for (int i = 0; i < 100; ++i) {
            many.push_back(std::make_unique<RecordingListener>());
            component().addCallBack(many.back().get());
        }
    });
    notify();
    EXPECT_EQ(last.events(), Events{GetParam()});
    notifyAgain();
    for (const auto& one : many)
        EXPECT_EQ(one->events(), Events{3});
}

TEST_P(InEveryNotification, ListenerMayStop) {
    once(first, [&] { EXPECT_EQ(component().stop(), KOR::statusOk); });
    notify();
    EXPECT_FALSE(task(0).running());
    EXPECT_EQ(last.events().back(), GetParam());
    const std::size_t heard = first.events().size();
    task(0).finish();
    EXPECT_EQ(first.events().size(), heard);
}

TEST_P(InEveryNotification, ListenerMayStartAgain) {
    once(first, [&] {
        component().stop();
        EXPECT_EQ(component().start(), KOR::statusOk);
    });
    notify();
    EXPECT_EQ(host().startCount, 2);
    EXPECT_TRUE(task(0).running());
    EXPECT_EQ(last.events().back(), GetParam());
    task(0).finish();
    EXPECT_EQ(first.events().back(), 2U);
}

TEST_P(InEveryNotification, ListenerMayClearTheMaterials) {
    once(first, [&] { EXPECT_EQ(component().clearMaterials(), KOR::statusOk); });
    notify();
    EXPECT_EQ(last.events(), Events{GetParam()});
    if (task(0).running()) task(0).finish();
    EXPECT_EQ(last.events().back(), 2U);
    EXPECT_TRUE(probe().results().empty());
}

TEST_P(InEveryNotification, ListenerMayReleaseTheComponent) {
    once(first, [&] { releaseComponent(); });
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_TRUE(last.heard().empty());
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_P(InEveryNotification, LastListenerMayReleaseTheComponent) {
    once(last, [&] { releaseComponent(); });
    notify();
    EXPECT_EQ(first.events(), Events{GetParam()});
    EXPECT_EQ(last.events(), Events{GetParam()});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_P(InEveryNotification, ListenerMayStopAndRelease) {
    once(first, [&] {
        component().stop();
        releaseComponent();
    });
    notify();
    EXPECT_EQ(first.events().front(), GetParam());
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_P(InEveryNotification, ListenerMayRemoveItselfAndRelease) {
    once(first, [&] {
        component().removeCallBack(&first);
        releaseComponent();
    });
    notify();
    EXPECT_TRUE(last.heard().empty());
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_P(InEveryNotification, NestedNotificationReachesEveryone) {
    once(first, [&] { task(0).send(1, KOR::taskEventStopped, nullptr); });
    notify();
    EXPECT_EQ(first.events(), (Events{GetParam(), 4}));
    EXPECT_EQ(last.events(), (Events{4, GetParam()}));
}

TEST_P(InEveryNotification, RemovalInANestedNotificationHolds) {
    once(first, [&] {
        once(first, [&] { component().removeCallBack(&last); });
        task(0).send(1, KOR::taskEventStopped, nullptr);
    });
    notify();
    EXPECT_TRUE(last.heard().empty());
}

TEST_P(InEveryNotification, ReleaseInANestedNotificationHolds) {
    once(first, [&] {
        once(first, [&] { releaseComponent(); });
        task(0).send(1, KOR::taskEventStopped, nullptr);
    });
    notify();
    EXPECT_TRUE(last.heard().empty());
    EXPECT_EQ(host().live.tasks, 0);
}

using Listeners = RunTest;

TEST_F(Listeners, AddedTwiceAreToldTwice) {
    component().addCallBack(&listener);
    component().start();
    EXPECT_EQ(listener.events(), (Events{2, 2}));
}

TEST_F(Listeners, RemovalTakesEveryEntry) {
    component().addCallBack(&listener);
    EXPECT_EQ(component().removeCallBack(&listener), KOR::statusOk);
    component().start();
    EXPECT_TRUE(listener.heard().empty());
}

TEST_F(Listeners, RemovalInTheFirstCallTakesTheSecond) {
    component().addCallBack(&listener);
    listener.onEvent = [&](std::uint32_t) { component().removeCallBack(&listener); };
    component().start();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(Listeners, MayReleaseInsideAStartWithoutTasks) {
    insert(photo("photo.jpg"));
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    component().start();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(host().live.media, 1);
}

TEST_F(Listeners, MayReleaseInsideTasksThatFinishInTheirStart) {
    host().tasksFinishInsideStart = true;
    insert(video("a.mp4", 100 * second));
    insert(video("b.mp4", 100 * second));
    useKinds({4, 3});
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    component().start();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_F(Listeners, MayReleaseBeyondTheNestedLevels) {
    host().tasksFinishInsideStart = true;
    for (int i = 0; i < 60; ++i)
        insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    component().start();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_F(Listeners, MayReleaseInAnEventOfTheStop) {
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    component().stop();
    EXPECT_EQ(listener.events(), Events{4});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_F(Listeners, MayStartTheNextRunFromTheEndOfTheLast) {
    insert(photo("photo.jpg"));
    int runs = 1;
    listener.onEvent = [&](std::uint32_t) {
        if (++runs <= 5) component().start();
    };
    EXPECT_EQ(component().start(), KOR::statusOk);
    EXPECT_EQ(listener.events(), (Events{2, 2, 2, 2, 2}));
    EXPECT_EQ(probe().results().size(), 1U);
}

TEST_F(Listeners, MayStartTheNextRunInsideNestedTasks) {
    host().tasksFinishInsideStart = true;
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    int runs = 1;
    listener.onEvent = [&](std::uint32_t) {
        if (++runs <= 40) component().start();
    };
    component().start();
    EXPECT_EQ(listener.events().size(), 40U);
    EXPECT_EQ(host().startCount, 80);
}

TEST_F(Listeners, OneComponentMayDriveAnother) {
    const Owned<KOR::IKorMaterialAnalysis> other(createMaterialAnalysis());
    RecordingListener heardFromOther("other");
    other->addCallBack(&heardFromOther);
    listener.onEvent = [&](std::uint32_t) { other->start(); };
    component().start();
    EXPECT_EQ(heardFromOther.events(), Events{2});
}

}  // namespace
}  // namespace fake_host
