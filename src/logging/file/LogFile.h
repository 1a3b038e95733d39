#pragma once

#include "platform/AppendFile.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace tarn {

/// One text file that lines are appended to. It knows at every moment which lines the system has
/// taken: after a failed write the others are handed back by takeUnwritten(), and a line that was
/// cut in the middle is completed when the same file is opened again. Not thread-safe.
class LogFile {
public:
    enum class Mode { Append, Truncate };

    LogFile() = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() { flush(); }

    /// Closes what was open, without flushing it. False when the file cannot be opened.
    bool open(const std::string& path, Mode mode);
    /// Open, and nothing has failed since.
    bool isGood() const { return mGood; }
    /// Takes a line, given without its line feed, into the buffer.
    void add(std::string_view line);
    /// Hands the buffer to the system. False on failure, and for a file that is not good.
    bool flush();
    bool close();
    /// The whole lines that no flush has written; the file forgets them.
    std::deque<std::string> takeUnwritten();
    /// Forgets what is not written.
    void discard();
    /// The size that the file will have when all that it took is written.
    std::int64_t position() const { return mWritten + static_cast<std::int64_t>(unwritten()); }
    /// Bytes that the system has not got yet.
    std::size_t unwritten() const { return mBuffer.size() - mTorn; }

private:
    platform::AppendFile mFile;
    std::string mBuffer;       ///< whole lines with their line feeds
    std::size_t mTorn = 0;     ///< bytes of the buffer's first line that a failed write did write
    std::int64_t mWritten = 0; ///< the file's size
    bool mGood = false;
};

} // namespace tarn
