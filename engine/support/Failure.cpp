#include "engine/support/Failure.h"

#include "engine/support/AvHandles.h"

#include <system_error>

namespace zelcore {

std::string ffmpegErrorText(int averror) {
    char buffer[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(averror, buffer, sizeof buffer);
    return buffer;
}

std::string systemErrorText(int error) {
    return std::generic_category().message(error);
}

void require(int averror, const char* what) {
    if (averror == AVERROR(ENOMEM)) {
        throw Failure(ErrorCode::OutOfMemory, text("Out of memory: ", what));
    }
    if (averror < 0) {
        throw Failure(ErrorCode::InternalError, text(what, ": ", ffmpegErrorText(averror)));
    }
}

} // namespace zelcore
