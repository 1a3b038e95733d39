#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace recordconverter::app {

/// Stands between the engine's threads and Qt. Once it is closed and empty, Qt may go down while
/// the engine still reports. Any thread.
class EngineGate {
public:
    /// Runs `report`, which must not block, unless the gate is closed.
    template <typename Report>
    void pass(const Report& report) {
        const Visit visit(mInside);
        if (!mClosed) {
            report();
        }
    }

    /// Turns away whoever comes later and waits for those inside, but not for ever: one of them may
    /// be the caller.
    void close(std::chrono::milliseconds patience) {
        mClosed = true;
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (mInside != 0 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

private:
    struct Visit {
        explicit Visit(std::atomic<int>& visitors) : inside(visitors) { ++inside; }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;
        ~Visit() { --inside; }
        std::atomic<int>& inside;
    };

    std::atomic<int> mInside = 0;
    std::atomic<bool> mClosed = false;
};

} // namespace recordconverter::app
