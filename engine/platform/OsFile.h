#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace zelcore {

/// What tells one state of a file from another. Equal values: the same file, unchanged.
struct FileState {
    std::uint64_t volume = 0;
    std::uint64_t number = 0;  ///< of the file within its volume
    std::uint64_t size = 0;    ///< bytes
    std::int64_t modified = 0; ///< finest unit of the system
    bool isFolder = false;
    bool isOrdinary = false; ///< a regular file: no folder, device or pipe

    bool isSameFileAs(const FileState& other) const {
        return volume == other.volume && number == other.number;
    }
    bool operator==(const FileState&) const = default;
};

/// An open file, closed when it goes. Positions are explicit, so that no call depends on another.
/// Failures are errno values (Windows' codes are translated); paths are UTF-8.
class OsFile {
public:
    OsFile() = default;
    OsFile(OsFile&& other) noexcept : mHandle(std::exchange(other.mHandle, kNone)) {}
    OsFile& operator=(OsFile&& other) noexcept;
    ~OsFile() { close(); }

    /// 0 or an errno value. A pipe or device is opened without waiting for its other end.
    static int openForReading(const std::string& path, OsFile& file);
    /// For reading what the disk has, past the system's cache: positions, sizes and memory in
    /// multiples of 4096 bytes. An errno value also where the file system offers no such thing.
    static int openPastCache(const std::string& path, OsFile& file);
    /// As openForReading, and marks the file as in use, see createNew.
    static int openInUse(const std::string& path, OsFile& file);
    /// Creates a file that must not exist yet, for reading and writing, marked as in use until it
    /// is closed: openToRemove leaves such a file alone, whichever process asks.
    static int createNew(const std::string& path, OsFile& file);

    /// Opens whatever is there, only to look at its state.
    static int openForState(const std::string& path, OsFile& file);

    /// Opens a file to remove it, if no process has it in use; EBUSY otherwise. Links are not
    /// followed.
    static int openToRemove(const std::string& path, OsFile& file);
    /// Of a file that was opened for that. `path` is its name.
    int remove(const std::string& path);

    bool isOpen() const { return mHandle != kNone; }
    /// 0 or an errno value; every writer must look at it.
    int close();

    /// Bytes read, 0 at the end, -1 with `error` set.
    std::int64_t readAt(std::uint64_t position, void* buffer, std::size_t size, int& error) const;
    /// Writes everything or returns an errno value.
    int writeAt(std::uint64_t position, const void* data, std::size_t size) const;
    /// Asks the system to begin writing a range to the disk, without waiting; a hint where it has
    /// no such thing. 0 or an errno value: what the system tells here, it does not tell again.
    int startWriteBack(std::uint64_t position, std::uint64_t size) const;
    /// Waits until a range handed to startWriteBack is on its way to the disk; as above.
    int awaitWriteBack(std::uint64_t position, std::uint64_t size) const;
    /// Everything written is on the disk when this returns 0.
    int syncToDisk() const;
    int state(FileState& state) const;
    /// Sets the time of the last change a second back, so that the next change shows in it however
    /// coarse the system's clock is.
    int backdate() const;
    /// Takes away from others what a file of that name does not allow them either; a file that is
    /// not there allows everything. On Windows nothing: what counts there is the folder.
    int narrowPermissions(const std::string& like) const;

private:
    using Handle = std::intptr_t;
    static constexpr Handle kNone = -1;
    explicit OsFile(Handle handle) : mHandle(handle) {}

    Handle mHandle = kNone;
};

} // namespace zelcore
