#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace tarn {

/// A callable of any type that takes nothing and returns nothing. It moves, it does not copy. Up to
/// 48 bytes are held in place, where the standard's holders have room for three pointers at most.
class InlineCallable {
public:
    static constexpr std::size_t kSize = 48;

    InlineCallable() = default;
    InlineCallable(InlineCallable&& other) noexcept { takeFrom(other); }
    InlineCallable& operator=(InlineCallable&& other) noexcept {
        if (this != &other) {
            reset();
            takeFrom(other);
        }
        return *this;
    }
    InlineCallable(const InlineCallable&) = delete;
    InlineCallable& operator=(const InlineCallable&) = delete;
    ~InlineCallable() { reset(); }

    template <typename Callable>
    void set(Callable&& callable) {
        using Held = std::decay_t<Callable>;
        reset();
        if constexpr (fits<Held>()) {
            std::construct_at(reinterpret_cast<Held*>(mPlace), std::forward<Callable>(callable));
            mKind = &kInPlace<Held>;
        } else {
            auto* const held = new Held(std::forward<Callable>(callable));
            std::memcpy(mPlace, &held, sizeof held);
            mKind = &kOnTheHeap<Held>;
        }
    }

    explicit operator bool() const noexcept { return mKind != nullptr; }
    /// Throws std::bad_function_call when empty.
    void operator()() {
        if (mKind == nullptr) {
            throw std::bad_function_call();
        }
        mKind->call(mPlace);
    }

private:
    struct Kind {
        void (*call)(std::byte* place);
        void (*move)(std::byte* from, std::byte* to) noexcept; ///< null: its bytes can be copied
        void (*destroy)(std::byte* place) noexcept;            ///< null: nothing to do
    };

    template <typename Held>
    static constexpr bool fits() {
        return sizeof(Held) <= kSize && alignof(Held) <= alignof(void*) &&
               std::is_nothrow_move_constructible_v<Held>;
    }
    template <typename Held>
    static Held& inPlace(std::byte* place) noexcept {
        return *std::launder(reinterpret_cast<Held*>(place));
    }
    template <typename Held>
    static Held* onTheHeap(const std::byte* place) noexcept {
        Held* held = nullptr;
        std::memcpy(&held, place, sizeof held);
        return held;
    }
    template <typename Held>
    static constexpr Kind kInPlace{
        [](std::byte* place) { inPlace<Held>(place)(); },
        std::is_trivially_copyable_v<Held>
            ? nullptr
            : +[](std::byte* from, std::byte* to) noexcept {
                  std::construct_at(reinterpret_cast<Held*>(to), std::move(inPlace<Held>(from)));
                  std::destroy_at(&inPlace<Held>(from));
              },
        std::is_trivially_destructible_v<Held>
            ? nullptr
            : +[](std::byte* place) noexcept { std::destroy_at(&inPlace<Held>(place)); }};
    template <typename Held>
    static constexpr Kind kOnTheHeap{
        [](std::byte* place) { (*onTheHeap<Held>(place))(); }, nullptr,
        [](std::byte* place) noexcept { delete onTheHeap<Held>(place); }};

    void reset() noexcept {
        if (const Kind* const kind = std::exchange(mKind, nullptr);
            kind != nullptr && kind->destroy != nullptr) {
            kind->destroy(mPlace);
        }
    }
    void takeFrom(InlineCallable& other) noexcept {
        mKind = std::exchange(other.mKind, nullptr);
        if (mKind == nullptr) {
            return;
        }
        if (mKind->move != nullptr) {
            mKind->move(other.mPlace, mPlace);
        } else {
            std::memcpy(mPlace, other.mPlace, kSize);
        }
    }

    alignas(void*) std::byte mPlace[kSize];
    const Kind* mKind = nullptr;
};

} // namespace tarn
