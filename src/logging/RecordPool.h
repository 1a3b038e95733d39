#pragma once

#include "logging/LogRecord.h"

#include <atomic>
#include <memory>
#include <vector>

namespace tarn {

/// Used records with their buffers, on their way from the worker back to the logging threads:
/// memory that one thread takes and another frees is what a heap is slowest at. Nobody waits for
/// the pool: who finds another thread in it goes to the heap.
class RecordPool {
public:
    RecordPool();

    /// Any thread.
    std::unique_ptr<LogRecord> take();
    /// The worker's thread only.
    void giveBack(std::unique_ptr<LogRecord> record) noexcept;

private:
    void share() noexcept;

    std::atomic_flag mIsBusy;
    std::vector<std::unique_ptr<LogRecord>> mFree;     ///< by whoever set mIsBusy
    std::vector<std::unique_ptr<LogRecord>> mReturned; ///< by the worker, until it can share them
};

} // namespace tarn
