#include "engine/files/LiveTemporaries.h"

#include "engine/platform/OsPath.h"
#include "threading/BoundedLock.h"

#include <cerrno>

namespace zelcore {

namespace {

struct ProcessExitHook {
    ProcessExitHook() {
        callAtQuickExit([] { LiveTemporaries::instance().removeAll(); });
    }
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
    return !mIsEnding && mTemporaries.emplace(path, std::nullopt).second;
}

void LiveTemporaries::identify(const std::string& path, const FileState& state) {
    const std::lock_guard lock(mMutex);
    mTemporaries[path] = state;
}

void LiveTemporaries::remove(const std::string& path) {
    const std::lock_guard lock(mMutex);
    if (const auto found = mTemporaries.find(path); found != mTemporaries.end()) {
        removeIdentified(*found);
        mTemporaries.erase(found);
    }
}

int LiveTemporaries::commit(const std::string& path, const std::string& destination,
                            bool mayReplace) {
    const std::lock_guard lock(mMutex);
    if (mIsEnding) {
        return ECANCELED;
    }
    const int error = mayReplace ? replaceFile(path, destination) : renameNew(path, destination);
    if (error == 0) {
        mTemporaries.erase(path);
    }
    return error;
}

void LiveTemporaries::removeAll() {
    const auto lock = tarn::lockWithin(mMutex, tarn::kUnloadBound);
    mIsEnding = true;
    for (const auto& temporary : mTemporaries) {
        removeIdentified(temporary);
    }
}

void LiveTemporaries::removeIdentified(const Temporaries::value_type& temporary) {
    const auto& [path, identity] = temporary;
    FileState found;
    if (identity && stateOf(path, found) == 0 && found.isSameFileAs(*identity)) {
        removeFile(path);
    }
}

} // namespace zelcore
