#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace tarn::platform {

/// A new file for its owner alone, under a name that nobody can foresee. It is marked as in use
/// until it is put into its place, and goes with the object if it never is. Not thread-safe.
class PrivateFile {
public:
    static constexpr const char* kEnding = ".part";

    /// Named `beginning`, random digits and ".part". Null on failure.
    static std::unique_ptr<PrivateFile> make(const std::string& beginning);
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;
    ~PrivateFile();

    std::FILE* stream() { return mStream; }
    /// Closes the stream; false when it has failed at any time.
    bool close();
    /// After close(). EEXIST when the name is taken and is not to be replaced.
    bool moveTo(const std::string& path, bool replaces);

private:
    PrivateFile(std::string path, std::FILE* stream, std::intptr_t mark)
        : mPath(std::move(path)), mStream(stream), mMark(mark) {}

    std::string mPath; ///< empty once it is in its place
    std::FILE* mStream;
    std::intptr_t mMark; ///< Linux: descriptor, Windows: HANDLE
};

/// Removes a file that a PrivateFile of this user left behind; false for one in use, or any other.
bool removeLeftoverFile(const std::string& path);

} // namespace tarn::platform
