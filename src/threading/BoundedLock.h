#pragma once

#include <chrono>
#include <mutex>
#include <thread>

namespace tarn {

inline constexpr auto kUnloadBound = std::chrono::milliseconds(500);

/// For unload and exit hooks, which must come to an end: Windows ends the other threads of a
/// process before they run, and one of those may have held the mutex. Look whether the lock owns
/// it.
inline std::unique_lock<std::mutex> lockWithin(std::mutex& mutex, std::chrono::milliseconds bound) {
    std::unique_lock lock(mutex, std::try_to_lock);
    const auto limit = std::chrono::steady_clock::now() + bound;
    while (!lock.owns_lock() && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        lock.try_lock();
    }
    return lock;
}

} // namespace tarn
