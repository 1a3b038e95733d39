#pragma once

#include "engine/job/ConversionJob.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zelcore {

/// The conversions of this process, each on a thread of its own. Nobody joins those threads: the
/// program may unload its libraries or end while they work.
class JobRegistry {
public:
    static JobRegistry& instance();

    /// False when the system has no thread left.
    bool start(const std::shared_ptr<ConversionJob>& job);
    bool isRunning(const ConversionJob* job);
    /// Asks every conversion to stop and waits until their threads have left it, except the calling
    /// one. False when the time is over first; they report nothing more either way.
    bool stopAll(std::chrono::milliseconds timeout);
    /// As stopAll, but waits only for calls into the sinks that are under way, briefly.
    void abandonAll();

private:
    struct Running {
        std::shared_ptr<ConversionJob> job;
        std::thread::id thread;
    };
    void run(const std::shared_ptr<ConversionJob>& job);
    /// Needs the lock.
    std::vector<std::shared_ptr<ConversionJob>> raiseAll() const;

    std::mutex mMutex;
    std::condition_variable mEnded;
    std::vector<Running> mRunning;
};

} // namespace zelcore
