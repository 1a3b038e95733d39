#include "logging/RecordStream.h"

#include <utility>

namespace tarn {
namespace {

constexpr std::size_t kMostFree = 16; // a megabyte, once that many have waited
constexpr std::chrono::microseconds kLongestWait{20};

} // namespace

class RecordStream::Batch {
public:
    Blocks blocks;
    std::atomic<bool> isEmptyAndOpen{false}; ///< for a worker that looks for more
};

RecordStream::RecordStream() {
    mFree.reserve(kMostFree);
}

RecordStream::~RecordStream() = default;

RecordStream::BatchPointer RecordStream::makeBatch() {
    return std::make_shared<Batch>();
}

void RecordStream::addToOpen(const LogRecord& record) {
    Blocks& blocks = mOpen->blocks;
    if (blocks.empty() || !blocks.back()->add(record)) {
        blocks.push_back(makeBlock(record));
        blocks.back()->add(record);
        mOpen->isEmptyAndOpen.store(false, std::memory_order_relaxed);
    }
}

std::unique_ptr<RecordBlock> RecordStream::makeBlock(const LogRecord& first) {
    if (mFree.empty() || !mFree.back()->fits(first)) {
        return std::make_unique<RecordBlock>(first);
    }
    auto block = std::move(mFree.back());
    mFree.pop_back();
    return block;
}

void RecordStream::closeBatch() {
    const std::lock_guard lock(mMutex);
    if (const BatchPointer batch = std::exchange(mOpen, nullptr); batch != nullptr) {
        batch->isEmptyAndOpen.store(false, std::memory_order_relaxed);
    }
}

RecordStream::Blocks RecordStream::take(Batch& batch) {
    const std::lock_guard lock(mMutex);
    Blocks taken = std::exchange(batch.blocks, {});
    if (mOpen.get() == &batch) {
        batch.isEmptyAndOpen.store(true, std::memory_order_relaxed);
        if (taken.empty()) {
            mOpen = nullptr;
        }
    }
    return taken;
}

void RecordStream::giveBack(std::unique_ptr<RecordBlock> block) noexcept {
    block->clear();
    const std::lock_guard lock(mMutex);
    if (block->isUsual() && mFree.size() < kMostFree) {
        mFree.push_back(std::move(block)); // within what was reserved
    }
}

void RecordStream::awaitMore(const Batch& batch) noexcept {
    shortWait::forMore(kLongestWait,
                       [&] { return !batch.isEmptyAndOpen.load(std::memory_order_relaxed); });
}

} // namespace tarn
