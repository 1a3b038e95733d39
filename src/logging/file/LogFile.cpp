#include "logging/file/LogFile.h"

namespace tarn {

bool LogFile::open(const std::string& path, Mode mode) {
    using enum platform::AppendFile::Existing;
    mGood = mFile.open(path, mode == Mode::Append ? Kept : Emptied);
    if (!mGood) {
        return false;
    }
    const std::int64_t size = mFile.size();
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
    const std::size_t taken = mFile.write(std::string_view(mBuffer).substr(mTorn));
    mWritten += static_cast<std::int64_t>(taken);
    const std::size_t written = mTorn + taken;
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
    return mFile.close() && flushed;
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
