#pragma once

#include "AsyncQueue/ShortWait.h"
#include "logging/RecordBlock.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn {

/// Records on their way from the logging threads to the worker, in batches. One task of the worker
/// writes a whole batch, and takes what is added to it meanwhile, so that most log calls post
/// nothing. A batch belongs to its task: when that is dropped, so are the records.
class RecordStream {
public:
    class Batch;
    using BatchPointer = std::shared_ptr<Batch>;

    RecordStream();
    ~RecordStream();
    RecordStream(const RecordStream&) = delete;
    RecordStream& operator=(const RecordStream&) = delete;

    /// Adds a record to the open batch; `post(batch)` is to post the task of a new one. Any thread;
    /// nobody waits but for others who add.
    void add(const LogRecord& record, const auto& post) {
        const std::lock_guard lock(mMutex);
        if (mOpen.use_count() < 2) { // there is none, or its task was dropped
            mOpen = nullptr;
            BatchPointer batch = makeBatch();
            post(batch);
            mOpen = std::move(batch);
        }
        addToOpen(record);
    }
    /// What is added from now on comes after the task that is posted next. Any thread.
    void closeBatch();
    /// Calls `write(record)`, which must not throw, for each record of a batch, in order, until it
    /// has no more. On the worker's thread.
    void drain(Batch& batch, const auto& write) {
        for (Blocks blocks = take(batch); !blocks.empty(); blocks = take(batch)) {
            std::size_t count = 0;
            for (auto& block : blocks) {
                block->forEach([&](const LogRecord& record) {
                    ++count;
                    write(record);
                });
                giveBack(std::move(block));
            }
            if (count > 1) {
                awaitMore(batch);
            }
        }
    }

private:
    using Blocks = std::vector<std::unique_ptr<RecordBlock>>;

    static BatchPointer makeBatch();
    void addToOpen(const LogRecord& record);
    std::unique_ptr<RecordBlock> makeBlock(const LogRecord& first);
    /// All that is in a batch; when that is nothing, no more can be added.
    Blocks take(Batch& batch);
    void giveBack(std::unique_ptr<RecordBlock> block) noexcept;
    /// In a burst the next record comes at once, and would post a task and wake the worker.
    static void awaitMore(const Batch& batch) noexcept;

    std::mutex mMutex;
    BatchPointer mOpen; ///< takes records; null when none does
    Blocks mFree;
};

} // namespace tarn
