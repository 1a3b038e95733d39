#include "AsyncQueue/TaskFunction.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <memory>

namespace tarn {
namespace {

template <typename Ballast>
void moveAbout() {
    const auto calls = std::make_shared<int>(0);
    const auto make = [&] {
        return [calls, ballast = Ballast()] {
            static_cast<void>(ballast);
            ++*calls;
        };
    };
    {
        TaskFunction first;
        first = make();
        TaskFunction second(std::move(first));
        second({});
        EXPECT_THROW(first({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
        TaskFunction third;
        third = std::move(second);
        third({});
        EXPECT_THROW(second({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
        third = make();
        EXPECT_EQ(calls.use_count(), 2) << "the former callable is gone";
    }
    EXPECT_EQ(calls.use_count(), 1);
    EXPECT_EQ(*calls, 2);
}

TEST(TaskFunction, MovesItsCallableInPlaceOrOnTheHeapAndIsEmptyAfterwards) {
    moveAbout<std::list<int>>(); // which does not bear being moved byte by byte
    moveAbout<std::array<char, 500>>();
}

TEST(TaskFunction, ReleasesTheCallersContextWhenTheCallEnds) {
    hint_external_input::set("first", "second");
    CallSite site = CallSite::capture("file", 1, "function");
    hint_external_input::clear();
    const std::weak_ptr<const hint_external_input> context = site.context;
    TaskFunction task(
        [&, moveOnly = std::make_unique<int>()] { EXPECT_EQ(context.lock()->second, "second"); });
    task(std::move(site));
    EXPECT_TRUE(context.expired());
}

} // namespace
} // namespace tarn
