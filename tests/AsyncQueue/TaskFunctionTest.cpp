#include "AsyncQueue/TaskFunction.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <type_traits>

namespace tarn {
namespace {

static_assert(!std::is_copy_constructible_v<TaskFunction>);
static_assert(std::is_nothrow_move_constructible_v<TaskFunction>);

/// Counts its own instances; as large as wanted, and moved by copying only when that may throw.
template <std::size_t Size, bool IsNothrow>
struct Counted {
    Counted(int& living, int& calls) : mLiving(&++living), mCalls(&calls) {}
    Counted(const Counted& other) noexcept(IsNothrow)
        : mLiving(other.mLiving), mCalls(other.mCalls) {
        ++*mLiving;
    }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --*mLiving; }
    void operator()() { ++*mCalls; }

    int* mLiving;
    int* mCalls;
    std::array<char, Size> ballast{};
};

template <typename Callable>
void moveAbout() {
    SCOPED_TRACE(sizeof(Callable));
    int living = 0;
    int calls = 0;
    {
        TaskFunction first;
        first = Callable(living, calls);
        TaskFunction second(std::move(first));
        second({});
        EXPECT_THROW(first({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
        first = std::move(second);
        first({});
        EXPECT_THROW(second({}), std::bad_function_call); // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(living, 1);
        first = Callable(living, calls);
        EXPECT_EQ(living, 1) << "the former callable is gone";
    }
    EXPECT_EQ(living, 0);
    EXPECT_EQ(calls, 2);
}

TEST(TaskFunction, MovesItsCallableInPlaceOrOnTheHeapAndIsEmptyAfterwards) {
    moveAbout<Counted<8, true>>();
    moveAbout<Counted<8, false>>();
    moveAbout<Counted<500, true>>();
    int sum = 0;
    TaskFunction task([&sum, moveOnly = std::make_unique<int>(3)] { sum += *moveOnly; });
    task({});
    EXPECT_EQ(sum, 3);
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
