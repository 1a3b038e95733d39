#include "engine/tracks/Track.h"

#include "engine/tracks/AudioTranscoder.h"
#include "engine/tracks/StreamCopier.h"
#include "engine/tracks/SubtitleTranscoder.h"
#include "engine/tracks/VideoTranscoder.h"

#include <cstring>

namespace zelcore {

std::unique_ptr<Track> makeTrack(const TrackPlan& plan, Muxer& muxer, Losses& losses) {
    if (plan.isCopied) {
        return std::make_unique<StreamCopier>(plan, muxer);
    }
    if (plan.reference->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
        return std::make_unique<VideoTranscoder>(plan, muxer, losses);
    }
    if (plan.reference->codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE) {
        return std::make_unique<SubtitleTranscoder>(plan, muxer, losses);
    }
    return std::make_unique<AudioTranscoder>(plan, muxer, losses);
}

void copyTrackProperties(const AVStream& from, AVStream& to, bool isTurned) {
    require(av_dict_copy(&to.metadata, from.metadata, 0), "track metadata");
    to.disposition = from.disposition;
    for (const auto type :
         {AV_PKT_DATA_DISPLAYMATRIX, AV_PKT_DATA_STEREO3D, AV_PKT_DATA_SPHERICAL,
          AV_PKT_DATA_MASTERING_DISPLAY_METADATA, AV_PKT_DATA_CONTENT_LIGHT_LEVEL}) {
        std::size_t size = 0;
        const auto* data = av_stream_get_side_data(&from, type, &size);
        if (data == nullptr || (isTurned && type == AV_PKT_DATA_DISPLAYMATRIX)) {
            continue;
        }
        std::uint8_t* copy = av_stream_new_side_data(&to, type, size);
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        std::memcpy(copy, data, size);
    }
}

} // namespace zelcore
