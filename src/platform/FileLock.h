#pragma once

#include <cstdint>
#include <string>

namespace tarn::platform {

/// A lock that is a file: held by one object at a time in all processes, and free as soon as its
/// holder's process has ended in whatever way. The file stays. Not thread-safe.
class FileLock {
public:
    enum class Result {
        Taken,
        Held,       ///< by somebody else
        Unavailable ///< the file cannot be made, or its file system has no locks
    };

    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { release(); }

    /// Never waits. Gives up what was held before.
    Result take(const std::string& path);
    void release();

private:
    static constexpr std::intptr_t kNone = -1;

    std::intptr_t mHandle = kNone; ///< Linux: descriptor, Windows: HANDLE
};

} // namespace tarn::platform
