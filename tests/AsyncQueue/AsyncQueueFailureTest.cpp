#include "AsyncQueue/AsyncQueueDestroyedException.h"
#include "AsyncQueueFixture.h"
#include "AsyncQueueProbe.h"
#include "threading/Assertion.h"

#include <functional>
#include <stdexcept>

namespace tarn {
namespace {

using ::testing::ElementsAre;

using AsyncQueueFailureTest = AsyncQueueFixture;

TEST_F(AsyncQueueFailureTest, LogsWhatATaskThrowsAndRunsTheNext) {
    testing::expectErrorLine("AsyncQueue[Q] Encountered");
    std::string assertion;
    setAssertionMessageHandler([&](const std::string& text, std::uint32_t line, const auto&...) {
        assertion = std::to_string(line) + " " + text;
    });
    mQueue->post("flush", TaskFunction([] { throw std::runtime_error("boom"); }), 0, 0);
    mQueue->post("number", TaskFunction([] { throw 1; }), 0, 0);
    mQueue->post("empty", TaskFunction(), 0, 0);
    post("next");
    mQueue->stop();
    setAssertionMessageHandler({});
    EXPECT_THAT(notes(), ElementsAre("next"));
    EXPECT_THAT(
        logged(),
        ElementsAre("195 <Error> AsyncQueue[Q] Encountered an exception while running a task: boom "
                    "with a task name of flush",
                    "199 <Error> AsyncQueue[Q] Encountered a generic exception while running task "
                    "number",
                    "195 <Error> AsyncQueue[Q] Encountered an exception while running a task: " +
                        std::string(std::bad_function_call().what()) +
                        " with a task name of empty"));
    EXPECT_EQ(assertion,
              "74 Assertion failed: mTask with message: TaskFunction called when empty, it's "
              "either been moved or default initialized. Called from File: AsyncQueue/AsyncQueue "
              "Line: 186");
}

TEST_F(AsyncQueueFailureTest, EndsItsWorkerWhenATaskSaysThatItsObjectIsGone) {
    mQueue->post("orphan", TaskFunction([] { throw AsyncQueueDestroyedException(); }), 0, 0);
    post("never 1");
    AsyncQueueProbe probe(*mQueue);
    // Nothing else tells that the worker has gone than that it can be joined.
    mQueue->stop();
    EXPECT_EQ(mQueue->pendingTaskCount(), 1U);
    EXPECT_EQ(mQueue->currentTaskName(), "orphan");
    EXPECT_THAT(notes(), ElementsAre());
    EXPECT_THAT(logged(), ElementsAre("190 <Warn> AsyncQueue[Q] Destructed running taskorphan"));
}

} // namespace
} // namespace tarn
