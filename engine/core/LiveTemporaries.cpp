#include "engine/core/LiveTemporaries.h"

#include "engine/core/BoundedLock.h"
#include "engine/platform/OsPath.h"

#include <cerrno>

namespace zelcore {

namespace {

struct ProcessExitHook {
    ~ProcessExitHook() { LiveTemporaries::instance().removeAll(); }
};
const ProcessExitHook processExitHook;

} // namespace

LiveTemporaries& LiveTemporaries::instance() {
    // Leaked: conversions go on while exit() runs the destructors of static objects.
    static auto& temporaries = *new LiveTemporaries();
    return temporaries;
}

bool LiveTemporaries::add(const std::string& path) {
    const std::lock_guard lock(mMutex);
    return !mIsEnding && mPaths.insert(path).second;
}

void LiveTemporaries::remove(const std::string& path) {
    const std::lock_guard lock(mMutex);
    if (mPaths.erase(path) > 0) {
        removeFile(path);
    }
}

void LiveTemporaries::forget(const std::string& path) {
    const std::lock_guard lock(mMutex);
    mPaths.erase(path);
}

int LiveTemporaries::commit(const std::string& path, const std::string& destination) {
    const std::lock_guard lock(mMutex);
    if (mIsEnding) {
        return ECANCELED;
    }
    const int error = replaceFile(path, destination);
    if (error == 0) {
        mPaths.erase(path);
    }
    return error;
}

void LiveTemporaries::removeAll() {
    const auto lock = lockWithin(mMutex, kUnloadBound);
    mIsEnding = true;
    for (const std::string& path : mPaths) {
        removeFile(path);
    }
}

} // namespace zelcore
