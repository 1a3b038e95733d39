#include "recordconverter/NotificationHelper.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

namespace recordconverter {
namespace {

struct Observer {
    std::string name;
    std::string* heard;
    std::function<void()> onDestroyed = [] {};

    ~Observer() { onDestroyed(); }
    void hear() { *heard += name; }
};

class Observers : public NotificationHelper<Observer> {
public:
    int expiredCalls = 0;

    std::shared_ptr<Observer> add(const std::string& name, std::string& heard) {
        auto observer = std::make_shared<Observer>(name, &heard);
        addObserver(observer);
        return observer;
    }
    void notify() {
        notifyObservers([](Observer& observer) { observer.hear(); });
    }

private:
    void onObserverExpired(std::weak_ptr<Observer> entry) override {
        ++expiredCalls;
        EXPECT_TRUE(entry.expired());
    }
};

TEST(NotificationHelper, CallsLiveObserversInOrderOfRegistrationAndEachObjectOnce) {
    Observers observers;
    std::string heard;
    const auto a = observers.add("a", heard);
    const auto b = observers.add("b", heard);
    observers.addObserver(a);
    observers.addObserver(std::shared_ptr<Observer>(b, b.get()));
    observers.notify();
    EXPECT_EQ(heard, "ab");
}

TEST(NotificationHelper, HandsAnExpiredObserverToTheHookOnceAndForgetsIt) {
    Observers observers;
    std::string heard;
    auto a = observers.add("a", heard);
    const auto b = observers.add("b", heard);
    a.reset();
    observers.addObserver({});
    observers.notify();
    EXPECT_EQ(observers.expiredCalls, 2);
    observers.notify();
    EXPECT_EQ(observers.expiredCalls, 2);
    EXPECT_EQ(heard, "bb");
}

TEST(NotificationHelper, SkipsAnObserverThatEndsDuringTheRoundAndTakesOneAddedInItNextTime) {
    Observers observers;
    std::string heard;
    const auto a = observers.add("a", heard);
    auto b = observers.add("b", heard);
    std::shared_ptr<Observer> c;
    observers.notifyObservers([&](Observer& observer) {
        observer.hear();
        if (b != nullptr) {
            b.reset();
            c = observers.add("c", heard);
        }
    });
    EXPECT_EQ(heard, "a");
    EXPECT_EQ(observers.expiredCalls, 0);
    observers.notify();
    EXPECT_EQ(heard, "aac");
    EXPECT_EQ(observers.expiredCalls, 1);
}

TEST(NotificationHelper, AnObserverMayComeBackFromItsDestructorOnAnyThread) {
    Observers observers;
    std::string heard;
    const auto keeper = std::make_shared<Observer>("k", &heard);
    for (int round = 0; round < 2000; ++round) {
        auto dying = std::make_shared<Observer>("d", &heard);
        dying->onDestroyed = [&] { observers.addObserver(keeper); };
        observers.addObserver(dying);
        std::thread releasing([&] { dying.reset(); });
        observers.addObserver(keeper);
        releasing.join();
    }
    observers.notify();
    EXPECT_EQ(heard, "k");
}

} // namespace
} // namespace recordconverter
