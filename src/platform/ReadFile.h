#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::platform {

/// An ordinary file that is open for reading. Not thread-safe.
class ReadFile {
public:
    /// Takes over what OpenFolder::openFile() gave.
    explicit ReadFile(std::intptr_t handle) : mHandle(handle) {}
    ReadFile(const ReadFile&) = delete;
    ReadFile& operator=(const ReadFile&) = delete;
    ~ReadFile();

    bool isOpen() const { return mHandle != -1; }
    /// In bytes; 0 when the system does not tell.
    std::uint64_t size() const;
    /// Seconds since 1970-01-01 UTC; 0 when the system does not tell.
    std::int64_t modified() const;
    /// How many bytes were read, 0 at the end, -1 on failure.
    std::ptrdiff_t read(char* buffer, std::size_t capacity);

private:
    std::intptr_t mHandle; ///< Linux: descriptor, Windows: HANDLE
};

} // namespace tarn::platform
