#include "engine/core/Track.h"

#include "engine/core/AudioTranscoder.h"
#include "engine/core/StreamCopier.h"
#include "engine/core/VideoTranscoder.h"

#include <cstring>

namespace zelcore {

std::unique_ptr<Track> makeTrack(const TrackPlan& plan, Muxer& muxer, Losses& losses) {
    if (plan.isCopied) {
        return std::make_unique<StreamCopier>(plan, muxer, losses);
    }
    if (plan.reference->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
        return std::make_unique<VideoTranscoder>(plan, muxer, losses);
    }
    return std::make_unique<AudioTranscoder>(plan, muxer, losses);
}

void copyTrackProperties(const AVStream& from, AVStream& to) {
    require(av_dict_copy(&to.metadata, from.metadata, 0), "track metadata");
    to.disposition = from.disposition;
    std::size_t size = 0;
    if (const auto* matrix = av_stream_get_side_data(&from, AV_PKT_DATA_DISPLAYMATRIX, &size)) {
        std::uint8_t* copy = av_stream_new_side_data(&to, AV_PKT_DATA_DISPLAYMATRIX, size);
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        std::memcpy(copy, matrix, size);
    }
}

} // namespace zelcore
