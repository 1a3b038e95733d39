#include "engine/tracks/TrackPlan.h"

#include "engine/tracks/Canvas.h"
#include "engine/tracks/PacketShape.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <span>

namespace zelcore {

namespace {

bool haveSameParameters(const AVStream& leftStream, const AVStream& rightStream) {
    const AVCodecParameters& left = *leftStream.codecpar;
    const AVCodecParameters& right = *rightStream.codecpar;
    const bool isSame =
        orientationOf(leftStream) == orientationOf(rightStream) &&
        pixelAspectOf(saidAspect(leftStream)) == pixelAspectOf(saidAspect(rightStream)) &&
        left.codec_id == right.codec_id && left.profile == right.profile &&
        left.width == right.width && left.height == right.height && left.format == right.format &&
        left.sample_rate == right.sample_rate &&
        left.ch_layout.nb_channels == right.ch_layout.nb_channels &&
        left.extradata_size == right.extradata_size;
    return isSame && (left.extradata_size == 0 ||
                      std::memcmp(left.extradata, right.extradata,
                                  static_cast<std::size_t>(left.extradata_size)) == 0);
}

bool isOneOf(int format, std::initializer_list<AVPixelFormat> formats) {
    return format == AV_PIX_FMT_NONE || std::ranges::find(formats, format) != formats.end();
}

/// The players that come with systems and browsers decode 8-bit 4:2:0. The profile counts besides:
/// lossless pictures of that format belong to High 4:4:4.
bool isWidelyPlayedH264(const AVCodecParameters& parameters) {
    switch (parameters.profile) {
        case FF_PROFILE_H264_HIGH_10:
        case FF_PROFILE_H264_HIGH_10_INTRA:
        case FF_PROFILE_H264_HIGH_422:
        case FF_PROFILE_H264_HIGH_422_INTRA:
        case FF_PROFILE_H264_HIGH_444:
        case FF_PROFILE_H264_HIGH_444_PREDICTIVE:
        case FF_PROFILE_H264_HIGH_444_INTRA:
        case FF_PROFILE_H264_CAVLC_444:
            return false;
        default:
            return isOneOf(parameters.format, {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P});
    }
}

/// Main and Main 10: whatever decodes HEVC decodes both, because recorders of high dynamic range
/// write Main 10. The range extensions hardly anything does.
bool isWidelyPlayedHevc(const AVCodecParameters& parameters) {
    return isOneOf(parameters.format,
                   {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUV420P10});
}

/// The track that the stream of `part` belongs to: the first of its kind that has none of it yet.
TrackPlan& trackFor(std::vector<TrackPlan>& plans, const Sources& sources, std::size_t part,
                    const AVStream& stream) {
    const auto found = std::ranges::find_if(plans, [&](const TrackPlan& plan) {
        return !plan.streamOfPart[part] &&
               plan.reference->codecpar->codec_type == stream.codecpar->codec_type;
    });
    if (found != plans.end()) {
        return *found;
    }
    TrackPlan plan;
    plan.reference = &stream;
    plan.streamOfPart.resize(sources.size());
    return plans.emplace_back(std::move(plan));
}

void decide(TrackPlan& plan, const Sources& sources) {
    if (!isCopyable(*plan.reference->codecpar)) {
        const AVCodecParameters& from = *plan.reference->codecpar;
        const char* profile = avcodec_profile_name(from.codec_id, from.profile);
        plan.reason = text(avcodec_get_name(from.codec_id), profile == nullptr ? "" : " ",
                           profile == nullptr ? "" : profile, " is not for an ordinary MP4");
        return;
    }
    for (std::size_t part = 0; part < sources.size(); ++part) {
        const auto stream = plan.streamOfPart[part];
        if (stream && !PacketShape::hasWholeHeader(*sources[part]->stream(*stream).codecpar)) {
            plan.reason = text("part ", part + 1, " lacks its codec data");
            return;
        }
        if (stream && !haveSameParameters(*plan.reference, sources[part]->stream(*stream))) {
            plan.reason = text("part ", part + 1, " has other parameters");
            return;
        }
    }
    plan.isCopied = true;
}

} // namespace

bool isCopyable(const AVCodecParameters& parameters) {
    switch (parameters.codec_id) {
        case AV_CODEC_ID_H264:
            return isWidelyPlayedH264(parameters);
        case AV_CODEC_ID_HEVC:
            return isWidelyPlayedHevc(parameters);
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_MP3:
        case AV_CODEC_ID_AC3:
        case AV_CODEC_ID_EAC3:
        case AV_CODEC_ID_ALAC:
            return true;
        default:
            return false;
    }
}

std::vector<TrackPlan> planTracks(const Sources& sources) {
    std::vector<TrackPlan> plans;
    for (std::size_t part = 0; part < sources.size(); ++part) {
        for (std::size_t index = 0; index < sources[part]->streamCount(); ++index) {
            const AVStream& stream = sources[part]->stream(index);
            if (sources[part]->isWanted(stream) || isTextSubtitle(stream)) {
                TrackPlan& plan = trackFor(plans, sources, part, stream);
                plan.streamOfPart[part] = index;
                plan.streams.push_back(
                    {&stream, {stream.codecpar->width, stream.codecpar->height}});
            }
        }
    }
    for (TrackPlan& plan : plans) {
        decide(plan, sources);
    }
    return plans;
}

} // namespace zelcore
