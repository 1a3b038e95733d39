#include "engine/core/Complaints.h"

#include <cstring>

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

void Complaints::hear(const void* object, int level) noexcept {
    if (listener == nullptr || object == nullptr || object != listener->mDemuxer) {
        return;
    }
    const AVFormatContext& demuxer = *listener->mDemuxer;
    if (demuxer.pb != nullptr && level < gravestHarmless(demuxer)) {
        listener->add(avio_tell(demuxer.pb));
    }
}

} // namespace zelcore
