#pragma once

#include "AsyncQueue/CallSite.h"

#include <concepts>
#include <functional>
#include <type_traits>
#include <utility>

namespace tarn {

/// Holds one task. It moves, it does not copy, and what it holds need not copy either.
class TaskFunction {
public:
    TaskFunction() = default;
    TaskFunction(TaskFunction&&) noexcept = default;
    TaskFunction& operator=(TaskFunction&&) noexcept = default;
    TaskFunction(const TaskFunction&) = delete;
    TaskFunction& operator=(const TaskFunction&) = delete;
    ~TaskFunction() = default;

    template <typename Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, TaskFunction>) explicit TaskFunction(
        Callable&& callable) {
        *this = std::forward<Callable>(callable);
    }

    template <typename Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, TaskFunction>) TaskFunction& operator=(
        Callable&& callable) {
        mTask = [inner = std::forward<Callable>(callable)]() mutable { inner(); };
        return *this;
    }

    /// Runs the task. An empty holder reports a failed assertion with the caller's place and then
    /// throws std::bad_function_call.
    void operator()(CallSite where);

private:
    std::move_only_function<void()> mTask;
};

} // namespace tarn
