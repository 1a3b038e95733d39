#include "platform/Identity.h"
#include "support/Signal.h"
#include "threading/ExternalInput.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace tarn {
namespace {

using ThreadUtilities::getThreadDescription;
using ThreadUtilities::setThreadDescription;

std::string ownName() {
    std::string whenLong;
    EXPECT_EQ(getThreadDescription(platform::threadId()),
              ThreadUtilities::currentThreadName(whenLong));
    return getThreadDescription(platform::threadId());
}

std::string context() {
    const auto shared = hint_external_input::share();
    return shared != nullptr ? shared->first + "," + shared->second : "none";
}

/// Threads of their own: what a test leaves on its thread is gone with it.
void onNewThread(const std::function<void()>& work) {
    std::thread(work).join();
}

TEST(ThreadUtilities, ShowsTheWholeDescriptionToOtherThreadsUntilTheThreadEnds) {
    const std::string name = "Ein Faden für Übersetzungen: " + std::string(300, 'x');
    onNewThread([&] {
        setThreadDescription("parent");
        hint_external_input::set("parent", "context");
        testing::Signal isNamed;
        testing::Signal mayEnd;
        std::uint32_t id = 0;
        std::thread thread([&] {
            EXPECT_EQ(ownName() + context(), "none");
            setThreadDescription(name);
            EXPECT_EQ(ownName(), name);
            id = platform::threadId();
            isNamed.set();
            mayEnd.wait();
        });
        isNamed.wait();
        EXPECT_EQ(getThreadDescription(id), name);
        EXPECT_EQ(ownName() + context(), "parentparent,context");
        mayEnd.set();
        thread.join();
        EXPECT_EQ(getThreadDescription(id), "");
        hint_external_input::clear();
    });
}

TEST(ScopedThreadNotifications, PutsDescriptionAndSavedContextBackAndLeavesNoOtherBehind) {
    for (const bool isSaved : {false, true}) {
        onNewThread([isSaved] {
            setThreadDescription("before");
            hint_external_input::set("", "only the second");
            EXPECT_EQ(context(), "none");
            hint_external_input::set("outer", "context");
            {
                const ScopedThreadNotifications scope(
                    "during", false, isSaved ? hint_external_input::share() : nullptr);
                EXPECT_EQ(ownName(), "during");
                hint_external_input::set("inner", "");
            }
            EXPECT_EQ(ownName() + context(), isSaved ? "beforeouter,context" : "beforenone");
            hint_external_input::clear();
        });
    }
}

} // namespace
} // namespace tarn
