#include "logging/RecordPool.h"

#include <cstddef>
#include <utility>

namespace tarn {
namespace {

constexpr std::size_t kMostFree = 512;
constexpr std::size_t kSharedAtOnce = 32;
constexpr std::size_t kLongestKeptMessage = 4096;

} // namespace

RecordPool::RecordPool() {
    mFree.reserve(kMostFree);
    mReturned.reserve(kSharedAtOnce);
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
    return record != nullptr ? std::move(record) : std::make_unique<LogRecord>();
}

void RecordPool::giveBack(std::unique_ptr<LogRecord> record) noexcept {
    if (record->message.capacity() > kLongestKeptMessage) {
        return;
    }
    mReturned.push_back(std::move(record)); // within what was reserved
    if (mReturned.size() == kSharedAtOnce) {
        share();
        mReturned.clear();
    }
}

void RecordPool::share() noexcept {
    if (mIsBusy.test_and_set(std::memory_order_acquire)) {
        return;
    }
    while (!mReturned.empty() && mFree.size() < kMostFree) {
        mFree.push_back(std::move(mReturned.back()));
        mReturned.pop_back();
    }
    mIsBusy.clear(std::memory_order_release);
}

} // namespace tarn
