#include "logging/LogStream.h"

#include <array>
#include <charconv>
#include <sstream>

namespace tarn {

LogStream& LogStream::operator<<(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::general, 6);
    mText.append(buffer.data(), end.ptr);
    return *this;
}

LogStream& LogStream::operator<<(const void* pointer) {
    // Each standard library has a form of its own for pointers; rare enough to ask it.
    std::ostringstream stream;
    stream << pointer;
    mText += stream.str();
    return *this;
}

LogStream& LogStream::appendSigned(std::int64_t value) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    mText.append(buffer.data(), end.ptr);
    return *this;
}

LogStream& LogStream::appendUnsigned(std::uint64_t value) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    mText.append(buffer.data(), end.ptr);
    return *this;
}

} // namespace tarn
