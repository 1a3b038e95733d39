#include "AsyncQueueFixture.h"

#include <stdexcept>

namespace tarn {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using AsyncQueueSuspensionTest = AsyncQueueFixture;

constexpr const char* kEntering = "370 <Info> Entering, asking the threadpool to suspend: Q";
constexpr const char* kReady =
    "139 <Info> mHasFinishedFunc is not nil, so we are ready to suspend and notify callback: Q";

TEST_F(AsyncQueueSuspensionTest, SuspendsAnIdleQueueAtOnceWithoutCallingTheCallback) {
    hold();
    auto callback = std::make_shared<std::function<void()>>([this] { note("callback"); });
    const std::weak_ptr<std::function<void()>> watch = callback;
    // The running task does not count: only what is queued.
    EXPECT_TRUE(mQueue->suspend([callback = std::move(callback)] { (*callback)(); }));
    EXPECT_TRUE(watch.expired());
    release();
    post("later");
    EXPECT_EQ(mQueue->pendingTaskCount(), 1U);
    EXPECT_THAT(notes(), IsEmpty());
    mQueue->resume();
    mQueue->stop();
    EXPECT_THAT(notes(), ElementsAre("later"));
    EXPECT_THAT(logged(), ElementsAre(kEntering));
}

TEST_F(AsyncQueueSuspensionTest, SuspendsABusyQueueAfterItsRunningTask) {
    for (const bool hasCallback : {true, false}) {
        SCOPED_TRACE(hasCallback);
        hold();
        post("later");
        std::promise<void> isCalled;
        EXPECT_FALSE(mQueue->suspend(hasCallback ? std::function<void()>([&] {
            EXPECT_TRUE(mQueue->isQueueThread());
            isCalled.set_value();
        })
                                                 : nullptr));
        release();
        if (hasCallback) {
            isCalled.get_future().wait();
        }
        EXPECT_EQ(mQueue->pendingTaskCount(), 1U);
        mQueue->resume();
        run("last", [] {}).wait();
    }
    EXPECT_THAT(notes(), ElementsAre("later", "later"));
    EXPECT_THAT(logged(), ElementsAre(kEntering, kReady, kEntering));
}

TEST_F(AsyncQueueSuspensionTest, LogsWhatTheCallbackThrowsAndGoesOn) {
    testing::expectErrorLine("AsyncQueue[Q]");
    for (const bool isStandard : {true, false}) {
        hold();
        post("later");
        mQueue->suspend([&, isStandard] {
            mQueue->resume();
            if (isStandard) {
                throw std::runtime_error("boom");
            }
            throw 1;
        });
        release();
        run("last", [] {}).wait();
    }
    EXPECT_THAT(notes(), ElementsAre("later", "later"));
    EXPECT_THAT(logged(), Contains("153 <Error> AsyncQueue[Q] Encountered an exception while "
                                   "calling suspension lambda: boom"));
    EXPECT_THAT(logged(), Contains("157 <Error> AsyncQueue[Q]Encountered a generic exception "
                                   "while calling suspension lambda"));
}

} // namespace
} // namespace tarn
