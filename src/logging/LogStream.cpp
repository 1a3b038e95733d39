#include "logging/LogStream.h"

#include <array>
#include <charconv>
#include <sstream>

namespace tarn {

void LogStream::appendLong(std::string_view text) {
    if (mLong.empty()) {
        mLong.reserve(2 * (mSize + text.size()));
        mLong.assign(mUsual.data(), mSize);
    }
    mLong.append(text);
}

LogStream& LogStream::operator<<(double value) {
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::general, 6);
    append({buffer.data(), end.ptr});
    return *this;
}

LogStream& LogStream::operator<<(const void* pointer) {
    // Each standard library has a form of its own for pointers; rare enough to ask it.
    std::ostringstream stream;
    stream << pointer;
    append(stream.str());
    return *this;
}

LogStream& LogStream::appendSigned(std::int64_t value) {
    std::array<char, 24> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    append({buffer.data(), end.ptr});
    return *this;
}

LogStream& LogStream::appendUnsigned(std::uint64_t value) {
    std::array<char, 24> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    append({buffer.data(), end.ptr});
    return *this;
}

} // namespace tarn
