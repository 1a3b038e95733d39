#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::platform {

/// A library's file from the decision whether it may be loaded up to its load. On Windows nobody
/// can write, rename or delete the file while this lives, so that what was looked at is what is
/// loaded. Linux has no such lock, and no signature that a change could get past.
class LibraryFile {
public:
    /// Opens the file at a full path on Windows; see isOpen() and platform::lastError().
    explicit LibraryFile(const std::wstring& path);
    LibraryFile(LibraryFile&& other) noexcept;
    LibraryFile(const LibraryFile&) = delete;
    LibraryFile& operator=(const LibraryFile&) = delete;
    LibraryFile& operator=(LibraryFile&&) = delete;
    ~LibraryFile();

    bool isOpen() const { return mHandle != kNone; }
    /// On Windows the one spelling that the system itself gives: drive letter, single backslashes,
    /// links and short names resolved. On Linux as it was given: `$ORIGIN` goes by the link's
    /// folder.
    const std::wstring& path() const { return mPath; }
    /// As it was given, with its dots, doubled separators and `\\?\` resolved: the folder by whose
    /// name it was asked for may be a link.
    const std::wstring& givenPath() const { return mGivenPath; }
    /// Full paths of the libraries beside this one that its load brings along by its import table,
    /// not theirs. Linux: nothing, since no rule there asks about them.
    std::vector<std::wstring> neighbours() const;

private:
    static constexpr std::intptr_t kNone = -1;
    std::intptr_t mHandle = kNone;
    std::wstring mPath;
    std::wstring mGivenPath;
};

} // namespace tarn::platform
