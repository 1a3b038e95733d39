#include "engine/core/TrackPlan.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace zelcore {

namespace {

bool haveSameParameters(const AVCodecParameters& left, const AVCodecParameters& right) {
    const bool isSame = left.codec_id == right.codec_id && left.profile == right.profile &&
                        left.width == right.width && left.height == right.height &&
                        left.format == right.format && left.sample_rate == right.sample_rate &&
                        left.ch_layout.nb_channels == right.ch_layout.nb_channels &&
                        left.extradata_size == right.extradata_size;
    return isSame && (left.extradata_size == 0 ||
                      std::memcmp(left.extradata, right.extradata,
                                  static_cast<std::size_t>(left.extradata_size)) == 0);
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
    plan.referenceSource = sources[part].get();
    plan.streamOfPart.resize(sources.size());
    return plans.emplace_back(std::move(plan));
}

void decide(TrackPlan& plan, const Sources& sources) {
    if (!isCopyable(plan.reference->codecpar->codec_id)) {
        plan.reason = text(avcodec_get_name(plan.reference->codecpar->codec_id),
                           " is not for an ordinary MP4");
        return;
    }
    for (std::size_t part = 0; part < sources.size(); ++part) {
        const auto stream = plan.streamOfPart[part];
        if (stream && !haveSameParameters(*plan.reference->codecpar,
                                          *sources[part]->stream(*stream).codecpar)) {
            plan.reason = text("part ", part + 1, " has other parameters");
            return;
        }
    }
    plan.isCopied = true;
}

} // namespace

bool isCopyable(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_HEVC:
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
            if (sources[part]->isWanted(stream)) {
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
