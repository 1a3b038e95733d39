#include "logging/RecordPool.h"

#include <cstddef>
#include <utility>

namespace tarn {
namespace {

constexpr std::size_t kMostFree = 4096; // about 1 MB, once that many lines have waited
constexpr std::size_t kSharedAtOnce = 32;
constexpr std::size_t kMostReturned = 256;

} // namespace

RecordPool::RecordPool() {
    mFree.reserve(kMostFree);
    mReturned.reserve(kMostReturned);
}

std::unique_ptr<LogRecord> RecordPool::take() {
    std::unique_ptr<LogRecord> record;
    if (!mIsBusy.test_and_set(std::memory_order_acquire)) {
        if (!mFree.empty()) {
            record = std::move(mFree.back());
            mFree.pop_back();
        }
        mIsBusy.clear(std::memory_order_release);
    }
    return record != nullptr ? std::move(record) : std::make_unique_for_overwrite<LogRecord>();
}

void RecordPool::giveBack(std::unique_ptr<LogRecord> record) noexcept {
    if (mReturned.size() == kMostReturned) {
        return;
    }
    record->shrink();
    mReturned.push_back(std::move(record)); // within what was reserved
    if (mReturned.size() >= kSharedAtOnce) {
        share();
    }
}

void RecordPool::share() noexcept {
    if (mIsBusy.test_and_set(std::memory_order_acquire)) {
        return; // with the next record, then
    }
    while (!mReturned.empty() && mFree.size() < kMostFree) {
        mFree.push_back(std::move(mReturned.back()));
        mReturned.pop_back();
    }
    mIsBusy.clear(std::memory_order_release);
}

} // namespace tarn
