#include "engine/job/JobRegistry.h"

#include "engine/platform/OsPath.h"
#include "engine/support/Trace.h"
#include "threading/BoundedLock.h"

#include <algorithm>
#include <system_error>

namespace zelcore {

JobRegistry& JobRegistry::instance() {
    // Leaked: conversions go on while exit() runs the destructors of static objects.
    static auto& registry = *new JobRegistry();
    return registry;
}

bool JobRegistry::start(const std::shared_ptr<ConversionJob>& job) {
    static std::once_flag isTracing;
    std::call_once(isTracing, traceFfmpeg);
    std::unique_lock lock(mMutex);
    mRunning.push_back({job, {}});
    try {
        std::thread thread([this, job] { run(job); });
        mRunning.back().thread = thread.get_id();
        thread.detach();
        return true;
    } catch (const std::system_error& error) {
        mRunning.pop_back();
        lock.unlock();
        trace(TraceLevel::Error, text("No thread for the conversion: ", error.what()));
        return false;
    }
}

void JobRegistry::run(const std::shared_ptr<ConversionJob>& job) {
    prepareEngineThread("ZelConverter");
    job->run();
    const std::lock_guard lock(mMutex);
    std::erase_if(mRunning, [&](const Running& each) { return each.job == job; });
    mEnded.notify_all();
}

bool JobRegistry::isRunning(const ConversionJob* job) {
    const std::lock_guard lock(mMutex);
    return std::ranges::any_of(mRunning, [job](const auto& each) { return each.job.get() == job; });
}

std::vector<std::shared_ptr<ConversionJob>> JobRegistry::raiseAll() const {
    std::vector<std::shared_ptr<ConversionJob>> jobs;
    for (const Running& each : mRunning) {
        each.job->stop();
        jobs.push_back(each.job);
    }
    return jobs;
}

bool JobRegistry::stopAll(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mMutex);
    const auto jobs = raiseAll();
    const bool ended = mEnded.wait_for(lock, timeout, [&] {
        return std::ranges::all_of(mRunning, [&](const Running& each) {
            return each.thread == std::this_thread::get_id() ||
                   std::ranges::find(jobs, each.job) == jobs.end();
        });
    });
    lock.unlock();
    for (const auto& job : jobs) {
        job->sink().drop();
    }
    return ended;
}

void JobRegistry::abandonAll() {
    auto lock = tarn::lockWithin(mMutex, tarn::kUnloadBound);
    if (!lock.owns_lock()) {
        return;
    }
    const auto jobs = raiseAll();
    lock.unlock();
    for (const auto& job : jobs) {
        job->sink().drop();
    }
}

} // namespace zelcore
