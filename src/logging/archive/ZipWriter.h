#pragma once

#include "platform/ReadFile.h"

#include <cstdio>
#include <string>
#include <vector>

namespace tarn {

/// Writes a zip archive onto an empty file, through minizip. Entries are deflated; their names,
/// which ZipEntryNames makes, carry the flag that says that they are UTF-8. Not thread-safe.
class ZipWriter {
public:
    enum class Result { Added, ContentFailed, ZipFailed };

    explicit ZipWriter(std::FILE* output);
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ~ZipWriter();

    bool isOpen() const { return mZip != nullptr; }
    /// Adds all that the file holds. Once minizip or its output has failed, the archive is of no
    /// use any more; a content that cannot be read to its end is there as far as it could be.
    Result add(const std::string& name, platform::ReadFile& content);
    /// Writes the directory, without which the archive is not valid.
    bool close();

private:
    Result writeContent(platform::ReadFile& content);

    void* mZip;
    std::vector<char> mBlock; ///< one for all entries: there may be many small ones
};

} // namespace tarn
