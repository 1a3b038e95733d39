#include "engine/support/Complaints.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

extern "C" {
#include <libavutil/log.h>
}

namespace zelcore {

namespace {

thread_local Complaints* listener = nullptr; // trivially destructible

/// Only broken tags make the FLV demuxer warn; the others warn of much that is harmless.
int gravestHarmless(const AVFormatContext& demuxer) {
    const bool isFlv = demuxer.iformat != nullptr && std::strcmp(demuxer.iformat->name, "flv") == 0;
    return isFlv ? AV_LOG_INFO : AV_LOG_WARNING;
}

/// What is said of any container: of pictures far apart, of a length or a rate that is not told.
bool isOfWholeRecordingsToo(std::string_view format) {
    static constexpr std::array<std::string_view, 3> beginnings = {
        "DTS discontinuity", "Estimating duration", "Stream #%d: not enough frames"};
    return std::ranges::any_of(beginnings, [&](auto each) { return format.starts_with(each); });
}

} // namespace

Complaints::Listening::Listening(Complaints& complaints, const AVFormatContext& demuxer) {
    complaints.mDemuxer = &demuxer;
    listener = &complaints;
}

Complaints::Listening::~Listening() {
    listener = nullptr;
}

void Complaints::add(std::int64_t position) noexcept {
    if (mPositions.size() < kMostKept) {
        mPositions.push_back(position);
    }
}

void Complaints::hear(const void* object, int level, const char* format) noexcept {
    if (listener == nullptr || object == nullptr || object != listener->mDemuxer) {
        return;
    }
    const AVFormatContext& demuxer = *listener->mDemuxer;
    if (demuxer.pb != nullptr && level < gravestHarmless(demuxer) &&
        !isOfWholeRecordingsToo(format)) {
        listener->add(avio_tell(demuxer.pb));
    }
}

} // namespace zelcore
