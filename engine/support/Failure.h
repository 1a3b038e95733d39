#pragma once

#include "engine/support/ErrorCode.h"

#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

namespace zelcore {

/// Ends a conversion with an error number and a sentence for the trace. Thrown and caught inside
/// the core only: ConversionJob::run is where every one of them ends.
class Failure : public std::runtime_error {
public:
    Failure(ErrorCode code, const std::string& text) : std::runtime_error(text), mCode(code) {}
    ErrorCode code() const { return mCode; }

private:
    ErrorCode mCode;
};

/// Ends a conversion that was asked to stop.
struct Stopped {};

/// Texts and numbers in a row, whatever the program's locale is.
template <class... Piece>
std::string text(const Piece&... piece) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    (stream << ... << piece);
    return std::move(stream).str();
}

/// FFmpeg's words for one of its error codes, or the system's for an errno value.
std::string ffmpegErrorText(int averror);
std::string systemErrorText(int error);

/// For calls that can fail for want of memory or by a fault of ours only.
void require(int averror, const char* what);

} // namespace zelcore
