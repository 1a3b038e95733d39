#include "log/LogStream.h"

#include <array>
#include <charconv>
#include <sstream>
#include <system_error>

namespace tarn {

void LogStream::appendLong(std::string_view text) {
    if (mLong.empty()) {
        mLong.reserve(2 * (mSize + text.size()));
        mLong.assign(mUsual.data(), mSize);
    }
    mLong.append(text);
}

template <typename... Form>
LogStream& LogStream::appendNumber(Form... form) {
    if (mLong.empty()) {
        const auto [end, error] =
            std::to_chars(mUsual.data() + mSize, mUsual.data() + kUsualSize, form...);
        if (error == std::errc()) {
            mSize = static_cast<std::size_t>(end - mUsual.data());
            return *this;
        }
    }
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), form...);
    append({buffer.data(), end.ptr});
    return *this;
}

LogStream& LogStream::operator<<(double value) {
    return appendNumber(value, std::chars_format::general, 6);
}

LogStream& LogStream::operator<<(const void* pointer) {
    // Each standard library has a form of its own for pointers; rare enough to ask it.
    std::ostringstream stream;
    stream << pointer;
    append(stream.str());
    return *this;
}

LogStream& LogStream::appendSigned(std::int64_t value) {
    return appendNumber(value);
}

LogStream& LogStream::appendUnsigned(std::uint64_t value) {
    return appendNumber(value);
}

} // namespace tarn
