#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <type_traits>
#include <utility>

namespace tarn {

/// A double-ended queue in blocks of many elements, of which it keeps some to use them again: in
/// steady state neither end costs an allocation, as std::deque's small blocks do, and none ever
/// moves the elements to make room, which would keep everybody waiting.
template <typename T>
class BlockDeque {
    static_assert(std::is_nothrow_move_constructible_v<T> && std::is_nothrow_move_assignable_v<T>);

public:
    BlockDeque() = default;
    BlockDeque(const BlockDeque&) = delete;
    BlockDeque& operator=(const BlockDeque&) = delete;

    bool empty() const noexcept { return mSize == 0; }
    std::size_t size() const noexcept { return mSize; }
    T& front() noexcept { return at(0); }

    /// A new element, default-constructed or moved from, at an end. For want of memory it throws
    /// and nothing changes.
    T& growBack() {
        if (mFirst + mSize == mBlocks.size() * kBlockSize) {
            mBlocks.push_back(makeBlock());
        }
        return at(mSize++);
    }
    T& growFront() {
        if (mFirst == 0) {
            mBlocks.push_front(makeBlock());
            mFirst = kBlockSize;
        }
        --mFirst;
        ++mSize;
        return front();
    }
    void pop_front() noexcept {
        front() = T();
        --mSize;
        if (++mFirst == kBlockSize) {
            keep(std::move(mBlocks.front()));
            mBlocks.pop_front();
            mFirst = 0;
        } else if (mSize == 0) {
            mFirst = 0; // where the memory is in the processor's cache
        }
    }
    /// Moves the elements that `predicate` accepts to the back of another queue, in order.
    template <typename Predicate>
    void moveIf(Predicate predicate, BlockDeque& to) {
        std::size_t kept = 0;
        std::size_t index = 0;
        try {
            for (; index < mSize; ++index) {
                if (predicate(std::as_const(at(index)))) {
                    to.growBack() = std::move(at(index));
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
    void swap(BlockDeque& other) noexcept {
        mBlocks.swap(other.mBlocks);
        mSpare.swap(other.mSpare);
        std::swap(mSpareCount, other.mSpareCount);
        std::swap(mFirst, other.mFirst);
        std::swap(mSize, other.mSize);
    }

private:
    static constexpr std::size_t kBlockSize = 64;
    static constexpr std::size_t kMostSpare = 64;

    struct Block {
        std::array<T, kBlockSize> elements;
        std::unique_ptr<Block> next; ///< of the spare ones
    };

    T& at(std::size_t index) noexcept {
        return mBlocks[(mFirst + index) / kBlockSize]->elements[(mFirst + index) % kBlockSize];
    }
    std::unique_ptr<Block> makeBlock() {
        if (mSpare == nullptr) {
            return std::make_unique_for_overwrite<Block>();
        }
        std::unique_ptr<Block> block = std::move(mSpare);
        mSpare = std::move(block->next);
        --mSpareCount;
        return block;
    }
    void keep(std::unique_ptr<Block> block) noexcept {
        if (mSpareCount < kMostSpare) {
            block->next = std::move(mSpare);
            mSpare = std::move(block);
            ++mSpareCount;
        }
    }

    std::deque<std::unique_ptr<Block>> mBlocks;
    std::unique_ptr<Block> mSpare;
    std::size_t mSpareCount = 0;
    std::size_t mFirst = 0; ///< place of the front in the first block
    std::size_t mSize = 0;
};

} // namespace tarn
