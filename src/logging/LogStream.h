#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

/// Builds the text of one log message. It writes what a default-formatted std::ostream would write
/// for the types it takes (bool as 0 or 1, floating point as %g, pointers as `const void*`), at a
/// fraction of the cost, and takes no others.
class LogStream {
public:
    LogStream() { mText.reserve(kUsualSize); }

    LogStream& operator<<(std::string_view text) {
        mText.append(text);
        return *this;
    }
    LogStream& operator<<(const char* text) {
        return *this << std::string_view(text != nullptr ? text : "(null)");
    }
    LogStream& operator<<(char character) {
        mText.push_back(character);
        return *this;
    }
    LogStream& operator<<(bool value) { return *this << (value ? '1' : '0'); }
    LogStream& operator<<(std::signed_integral auto value) {
        return appendSigned(static_cast<std::int64_t>(value));
    }
    LogStream& operator<<(std::unsigned_integral auto value) {
        return appendUnsigned(static_cast<std::uint64_t>(value));
    }
    LogStream& operator<<(double value);
    LogStream& operator<<(float value) { return *this << static_cast<double>(value); }
    LogStream& operator<<(const void* pointer);

    std::string take() { return std::move(mText); }

private:
    static constexpr std::size_t kUsualSize = 120; ///< spares most messages growing step by step

    LogStream& appendSigned(std::int64_t value);
    LogStream& appendUnsigned(std::uint64_t value);

    std::string mText;
};

} // namespace tarn
