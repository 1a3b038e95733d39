#include "AsyncQueue/TaskFunction.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace tarn {
namespace {

static_assert(!std::is_copy_constructible_v<TaskFunction>);
static_assert(std::is_nothrow_move_constructible_v<TaskFunction>);

TEST(TaskFunction, MovesItsCallableAndIsEmptyAfterwards) {
    int calls = 0;
    TaskFunction first;
    first = [&calls, moveOnly = std::make_unique<int>(3)] { calls += *moveOnly; };
    TaskFunction second(std::move(first));
    second({});
    EXPECT_EQ(calls, 3);
    EXPECT_THROW(first({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
    first = std::move(second);
    first({});
    EXPECT_EQ(calls, 6);
    EXPECT_THROW(second({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
}

TEST(TaskFunction, ReleasesTheCallersContextWhenTheCallEnds) {
    hint_external_input::set("first", "second");
    CallSite site = CallSite::capture("file", 1, "function");
    hint_external_input::clear();
    const std::weak_ptr<const hint_external_input> context = site.context;
    EXPECT_EQ(context.lock()->second, "second");
    TaskFunction task([&] { EXPECT_FALSE(context.expired()); });
    task(std::move(site));
    EXPECT_TRUE(context.expired());
}

} // namespace
} // namespace tarn
