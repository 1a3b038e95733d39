#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn {

/// A hook, handler or sink that any thread may use while another replaces it. What was ever set
/// stays alive as long as this does, because a call may still be inside it.
template <typename Value>
class Replaceable {
public:
    void set(Value value) {
        const std::lock_guard lock(mMutex);
        keep(std::move(value));
    }
    /// Only where there is none, or an empty one.
    void setDefault(Value value) {
        const std::lock_guard lock(mMutex);
        if (const Value* present = get(); present == nullptr || !*present) {
            keep(std::move(value));
        }
    }
    void reset() noexcept { mCurrent.store(nullptr, std::memory_order_release); }
    /// Null when there is none.
    const Value* get() const noexcept { return mCurrent.load(std::memory_order_acquire); }

private:
    void keep(Value value) {
        mKept.push_back(std::make_unique<const Value>(std::move(value)));
        mCurrent.store(mKept.back().get(), std::memory_order_release);
    }

    std::mutex mMutex;
    std::vector<std::unique_ptr<const Value>> mKept;
    std::atomic<const Value*> mCurrent{nullptr};
};

} // namespace tarn
