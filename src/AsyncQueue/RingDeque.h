#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

namespace tarn {

/// A double-ended queue in one block of memory, which it keeps: in steady state neither end costs
/// an allocation, as std::deque's blocks do. An emptied queue gives a large block back.
template <typename T>
class RingDeque {
    static_assert(std::is_nothrow_move_constructible_v<T> && std::is_nothrow_move_assignable_v<T>);

public:
    RingDeque() = default;
    RingDeque(const RingDeque&) = delete;
    RingDeque& operator=(const RingDeque&) = delete;

    bool empty() const noexcept { return mSize == 0; }
    std::size_t size() const noexcept { return mSize; }
    T& front() noexcept { return at(0); }

    /// Strong guarantee: for want of memory nothing changes and the element stays with the caller.
    void push_back(T&& element) {
        reserveOneMore();
        at(mSize) = std::move(element);
        ++mSize;
    }
    void push_front(T&& element) {
        reserveOneMore();
        mFirst = wrap(mFirst + mCapacity - 1);
        ++mSize;
        front() = std::move(element);
    }
    void pop_front() noexcept {
        front() = T();
        mFirst = wrap(mFirst + 1);
        if (--mSize == 0 && mCapacity > kKeptCapacity) {
            RingDeque().swap(*this);
        }
    }
    /// Moves the elements that `predicate` accepts to the back of another queue, in order.
    template <typename Predicate>
    void moveIf(Predicate predicate, RingDeque& to) {
        std::size_t kept = 0;
        std::size_t index = 0;
        try {
            for (; index < mSize; ++index) {
                if (predicate(std::as_const(at(index)))) {
                    to.push_back(std::move(at(index)));
                } else if (kept++ != index) {
                    at(kept - 1) = std::move(at(index));
                }
            }
        } catch (...) {
            for (; index < mSize; ++index) {
                at(kept++) = std::move(at(index));
            }
            mSize = kept;
            throw;
        }
        mSize = kept;
    }
    void swap(RingDeque& other) noexcept {
        std::swap(mElements, other.mElements);
        std::swap(mCapacity, other.mCapacity);
        std::swap(mFirst, other.mFirst);
        std::swap(mSize, other.mSize);
    }

private:
    static constexpr std::size_t kFirstCapacity = 16; // capacities are powers of two
    static constexpr std::size_t kKeptCapacity = 4096;

    std::size_t wrap(std::size_t index) const noexcept { return index & (mCapacity - 1); }
    T& at(std::size_t index) noexcept { return mElements[wrap(mFirst + index)]; }

    void reserveOneMore() {
        if (mSize < mCapacity) {
            return;
        }
        const std::size_t capacity = mCapacity == 0 ? kFirstCapacity : 2 * mCapacity;
        auto elements = std::make_unique<T[]>(capacity);
        for (std::size_t index = 0; index < mSize; ++index) {
            elements[index] = std::move(at(index));
        }
        mElements = std::move(elements);
        mCapacity = capacity;
        mFirst = 0;
    }

    std::unique_ptr<T[]> mElements;
    std::size_t mCapacity = 0;
    std::size_t mFirst = 0;
    std::size_t mSize = 0;
};

} // namespace tarn
