#include "recordconverter/NotificationHelper.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace recordconverter {
namespace {

struct Observer {
    std::string name;
    std::function<void()> onDestroyed = [] {};

    explicit Observer(std::string ownName) : name(std::move(ownName)) {}
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    ~Observer() { onDestroyed(); }
};

class Observers : public testing::Test, protected NotificationHelper<Observer> {
protected:
    std::shared_ptr<Observer> add(const std::string& name) {
        auto observer = std::make_shared<Observer>(name);
        addObserver(observer);
        return observer;
    }
    std::string notified() {
        std::string names;
        notifyObservers([&](const Observer& observer) { names += observer.name; });
        return names;
    }
    void onObserverExpired(std::weak_ptr<Observer> entry) override {
        ++expiredCalls;
        EXPECT_TRUE(entry.expired());
    }

    int expiredCalls = 0;
};

TEST_F(Observers, AreCalledInOrderOnceEachAndForgottenOnceTheyAreGone) {
    auto a = add("a");
    const auto b = add("b");
    addObserver(a);
    addObserver(std::shared_ptr<Observer>(b, b.get()));
    EXPECT_EQ(notified(), "ab");
    a.reset();
    addObserver({});
    EXPECT_EQ(notified(), "b");
    EXPECT_EQ(notified(), "b");
    EXPECT_EQ(expiredCalls, 2);
}

TEST_F(Observers, AreSkippedWhenTheyEndDuringTheRoundAndCalledTheNextTimeWhenAddedInIt) {
    const auto a = add("a");
    auto b = add("b");
    std::shared_ptr<Observer> c;
    std::string names;
    notifyObservers([&](const Observer& observer) {
        names += observer.name;
        b.reset();
        c = add("c");
    });
    EXPECT_EQ(names, "a");
    EXPECT_EQ(expiredCalls, 0);
    EXPECT_EQ(notified(), "ac");
    EXPECT_EQ(expiredCalls, 1);
}

TEST_F(Observers, MayComeBackFromTheirDestructorOnAnyThread) {
    const auto keeper = std::make_shared<Observer>("k");
    for (int round = 0; round < 2000; ++round) {
        auto dying = add("d");
        dying->onDestroyed = [&] { addObserver(keeper); };
        std::thread releasing([&] { dying.reset(); });
        addObserver(keeper);
        releasing.join();
    }
    EXPECT_EQ(notified(), "k");
}

} // namespace
} // namespace recordconverter
