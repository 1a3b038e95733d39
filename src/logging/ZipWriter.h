#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace tarn {

/// Writes a zip archive onto a seekable stream, through minizip. Entries are deflated; their names,
/// which ZipEntryNames makes, carry the flag that says that they are UTF-8. Not thread-safe.
class ZipWriter {
public:
    explicit ZipWriter(std::ostream& output);
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ~ZipWriter();

    bool isOpen() const { return mZip != nullptr; }
    /// Adds all that the stream holds; `size` is what is expected of it, `modified` counts seconds
    /// since 1970-01-01 UTC. False when minizip or its output failed; whether the content could be
    /// read to its end, the stream itself tells.
    bool add(const std::string& name, std::istream& content, std::uint64_t size,
             std::int64_t modified);
    /// Writes the directory, without which the archive is not valid.
    bool close();

private:
    bool writeContent(std::istream& content);

    void* mZip;
    std::vector<char> mBlock; ///< one for all entries: there may be many small ones
};

} // namespace tarn
