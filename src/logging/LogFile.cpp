#include "logging/LogFile.h"

#include "platform/Files.h"

namespace tarn {

bool LogFile::open(const std::string& path, Mode mode) {
    mFile.close();
    // The lines wait in mBuffer alone, so that a failed write tells how many bytes were taken.
    mFile.pubsetbuf(nullptr, 0);
    const auto openMode =
        std::ios::out | std::ios::binary | (mode == Mode::Append ? std::ios::app : std::ios::trunc);
    mGood = mFile.open(platform::nativePath(path), openMode) != nullptr;
    if (!mGood) {
        return false;
    }
    const std::int64_t size = mFile.pubseekoff(0, std::ios::end, std::ios::out);
    if (mode == Mode::Truncate || size != mWritten) {
        mTorn = 0;
    }
    mWritten = size;
    return true;
}

void LogFile::add(std::string_view line) {
    mBuffer.append(line);
    mBuffer.push_back('\n');
}

bool LogFile::flush() {
    if (!mGood) {
        return false;
    }
    const std::size_t size = mBuffer.size() - mTorn;
    const std::streamsize taken =
        size > 0 ? mFile.sputn(mBuffer.data() + mTorn, static_cast<std::streamsize>(size)) : 0;
    mWritten += taken;
    const std::size_t written = mTorn + static_cast<std::size_t>(taken);
    if (written == mBuffer.size()) {
        mBuffer.clear();
        mTorn = 0;
        return true;
    }
    mGood = false;
    const std::size_t firstUnwritten = written == 0 ? 0 : mBuffer.rfind('\n', written - 1) + 1;
    mBuffer.erase(0, firstUnwritten);
    mTorn = written - firstUnwritten;
    return false;
}

bool LogFile::close() {
    const bool flushed = flush();
    mGood = false;
    return mFile.close() != nullptr && flushed;
}

std::deque<std::string> LogFile::takeUnwritten() {
    std::deque<std::string> lines;
    const std::size_t first = mTorn > 0 ? mBuffer.find('\n') + 1 : 0;
    std::size_t begin = first;
    for (std::size_t end = 0; (end = mBuffer.find('\n', begin)) != std::string::npos;) {
        lines.push_back(mBuffer.substr(begin, end - begin));
        begin = end + 1;
    }
    mBuffer.resize(first);
    return lines;
}

void LogFile::discard() {
    mBuffer.clear();
    mTorn = 0;
}

} // namespace tarn
