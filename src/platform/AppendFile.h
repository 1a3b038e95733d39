#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::platform {

/// An ordinary file whose end bytes are added to, each write by as few calls of the system as it
/// allows: one. A stream would copy them into a buffer, or gather them by a dearer call. Others may
/// read and write the file meanwhile; child processes do not inherit it. Not thread-safe.
class AppendFile {
public:
    enum class Existing { Kept, Emptied };

    AppendFile() = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;
    ~AppendFile() { close(); }

    /// Closes what was open, and makes the file where there is none. False on failure, and for a
    /// pipe or a device, which would keep the caller waiting or take the bytes away.
    bool open(const std::string& path, Existing existing);
    /// The number of bytes that the system took: fewer than given once it refuses the rest.
    std::size_t write(std::string_view bytes);
    /// In bytes; 0 when the system does not tell.
    std::int64_t size() const;
    /// False when the system reports what writing had held back, and when nothing was open.
    bool close();

private:
    static constexpr std::intptr_t kNone = -1;

    std::intptr_t mHandle = kNone; ///< Linux: descriptor, Windows: HANDLE
};

} // namespace tarn::platform
