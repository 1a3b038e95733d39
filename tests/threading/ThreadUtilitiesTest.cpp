#include "platform/Identity.h"
#include "support/Signal.h"
#include "threading/ExternalInput.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <gmock/gmock.h>

#include <future>
#include <thread>

namespace tarn {
namespace {

using ThreadUtilities::getThreadDescription;
using ThreadUtilities::setThreadDescription;

std::string ownDescription() {
    return getThreadDescription(platform::threadId());
}

std::string ownName() {
    std::string whenLong;
    return std::string(ThreadUtilities::currentThreadName(whenLong));
}

/// Threads of their own: what a test leaves on its thread is gone with it.
void onNewThread(const std::function<void()>& work) {
    std::thread(work).join();
}

TEST(ThreadUtilities, ShowsTheWholeDescriptionToOtherThreadsUntilTheThreadEnds) {
    const std::string name = "Ein Faden für Übersetzungen: " + std::string(300, 'x');
    testing::Signal mayEnd;
    std::promise<std::uint32_t> identifier;
    std::thread thread([&] {
        setThreadDescription(name);
        EXPECT_EQ(ownName(), name);
        identifier.set_value(platform::threadId());
        mayEnd.wait();
    });
    const std::uint32_t id = identifier.get_future().get();
    EXPECT_EQ(getThreadDescription(id), name);
    EXPECT_NE(getThreadDescription(platform::threadId()), name);
    mayEnd.set();
    thread.join();
    EXPECT_EQ(getThreadDescription(id), "");
}

TEST(ThreadUtilities, StartsEveryThreadWithoutANameOrContext) {
    setThreadDescription("parent");
    hint_external_input::set("parent", "context");
    onNewThread([] {
        EXPECT_EQ(ownDescription(), "");
        EXPECT_EQ(ownName(), "");
        EXPECT_EQ(hint_external_input::share(), nullptr);
    });
    setThreadDescription("");
    hint_external_input::clear();
}

TEST(ThreadUtilities, SharesACopyOfTheContextWhenItsFirstTextIsSet) {
    onNewThread([] {
        hint_external_input::set("", "only the second");
        EXPECT_EQ(hint_external_input::share(), nullptr);
        hint_external_input::set("first", "second");
        const auto shared = hint_external_input::share();
        hint_external_input::set("changed", "");
        ASSERT_NE(shared, nullptr);
        EXPECT_EQ(shared->first + "," + shared->second, "first,second");
        EXPECT_EQ(hint_external_input::share()->first, "changed");
        hint_external_input::clear();
        EXPECT_EQ(hint_external_input::share(), nullptr);
    });
}

TEST(ScopedThreadNotifications, PutsDescriptionAndSavedContextBackAndLeavesNoOtherBehind) {
    for (const bool isSaved : {false, true}) {
        SCOPED_TRACE(isSaved);
        onNewThread([isSaved] {
            setThreadDescription("before");
            hint_external_input::set("outer", "context");
            {
                const ScopedThreadNotifications scope(
                    "during", false, isSaved ? hint_external_input::share() : nullptr);
                EXPECT_EQ(ownDescription() + ownName(), "duringduring");
                hint_external_input::set("inner", "");
            }
            EXPECT_EQ(ownDescription() + ownName(), "beforebefore");
            const auto left = hint_external_input::share();
            EXPECT_EQ(left != nullptr ? left->first + "," + left->second : "none",
                      isSaved ? "outer,context" : "none");
            hint_external_input::clear();
        });
    }
}

TEST(ScopedThreadNotifications, KeepsTheOutermostRegisteredScopeAsTheCurrentOne) {
    using Scope = ScopedThreadNotifications;
    onNewThread([] {
        {
            const Scope unregistered("unregistered", false);
            EXPECT_EQ(Scope::currentScope(), nullptr);
            const Scope outer("outer", true);
            {
                const Scope inner("inner", true);
                EXPECT_EQ(Scope::currentScope(), &outer);
                onNewThread([] { EXPECT_EQ(Scope::currentScope(), nullptr); });
            }
            EXPECT_EQ(Scope::currentScope(), &outer);
        }
        EXPECT_EQ(Scope::currentScope(), nullptr);
    });
}

} // namespace
} // namespace tarn
