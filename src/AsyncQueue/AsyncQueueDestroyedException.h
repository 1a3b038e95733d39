#pragma once

#include <exception>

namespace tarn {

/// Thrown by a task whose object is gone: the worker that ran it ends, and leaves its queue as is.
class AsyncQueueDestroyedException : public std::exception {
public:
    const char* what() const noexcept override { return "the object of the task is gone"; }
};

} // namespace tarn
