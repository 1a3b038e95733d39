#include "engine/job/PartJoiner.h"

#include "engine/job/PartWatch.h"
#include "engine/support/Trace.h"

#include <algorithm>
#include <string_view>

namespace zelcore {

namespace {

constexpr std::size_t kMostWaitingBytes = 32'000'000;
// No recording has such times; sums of a few of them stay in range.
constexpr Ticks kBeyondAllTimes = INT64_MAX / 8;

Ticks readTime(std::int64_t time, AVRational base) {
    const Ticks ticks = time == kNoTime ? kNoTime : toTicks(time, base);
    return ticks > kBeyondAllTimes || ticks < -kBeyondAllTimes ? kNoTime : ticks;
}

/// How much of a packet nobody is to see or hear: what an edit list leaves out, and what encoders
/// put before the sound. `packet` counts in ticks.
Ticks hiddenPart(const AVPacket& packet, const AVCodecParameters& parameters) {
    if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0) {
        return packet.duration;
    }
    std::size_t size = 0;
    const std::uint8_t* skip = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    const std::int64_t samples = std::max<std::int64_t>(
        skip != nullptr && size >= 4 ? AV_RL32(skip) : 0, parameters.initial_padding);
    return parameters.sample_rate > 0 ? av_rescale(samples, kTicks.den, parameters.sample_rate) : 0;
}

} // namespace

PartJoiner::PartJoiner(const Sources& sources, const std::vector<TrackPlan>& plans,
                       const std::vector<std::unique_ptr<Track>>& tracks, Losses& losses,
                       const StopFlag& stop, Progress& progress)
    : mSources(sources),
      mPlans(plans),
      mTracks(tracks),
      mLosses(losses),
      mStop(stop),
      mProgress(progress) {
    for (const auto& source : sources) {
        mBytes += source->state().size;
    }
}

void PartJoiner::run() {
    for (std::size_t part = 0; part < mSources.size(); ++part) {
        mSources[part]->open();
        runPart(part);
        mSources[part]->close();
        mBefore += mSources[part]->state().size;
    }
    for (const auto& track : mTracks) {
        track->finish();
        mStop.throwIfRaised();
    }
}

void PartJoiner::runPart(std::size_t part) {
    Source& source = *mSources[part];
    const TrackOfStream trackOf = beginPart(part);
    // Matroska has none; what libavformat makes of the order of pictures is wrong around jumps.
    mKeepsDecodingTimes =
        std::string_view(source.format().iformat->name).find("matroska") == std::string_view::npos;
    Timeline timeline = timelineOf(part);
    mOffset.reset();
    const PacketPtr packet = makePacket();
    // Near enough for telling where something is missing.
    PartWatch watch(source, mPlans, part, addTimes(mEnd, -source.start()), mLosses);
    while (source.read(*packet)) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        if (watch.look(*packet)) {
            noteProgress(*packet, source);
            take(*packet, source.stream(index), *trackOf[index], timeline);
        }
        av_packet_unref(packet.get());
        mStop.throwIfRaised();
    }
    mStop.throwIfRaised();
    watch.end();
    while (timeline.hasWaiting()) {
        timeline.decide();
    }
    deliver(timeline);
    for (const auto& track : trackOf) {
        if (track) {
            mTracks[*track]->endPart();
        }
    }
    trace(TraceLevel::Debug, text("Part ", part + 1, " covers ", toSeconds(mEnd), " s to ",
                                  toSeconds(timeline.end()), " s"));
    addChapters(source, timeline.end());
    mEnd = timeline.end();
}

PartJoiner::TrackOfStream PartJoiner::beginPart(std::size_t part) {
    const Source& source = *mSources[part];
    TrackOfStream trackOf(source.streamCount());
    for (std::size_t track = 0; track < mPlans.size(); ++track) {
        if (const auto stream = mPlans[track].streamOfPart[part]) {
            trackOf[*stream] = track;
            mTracks[track]->beginPart(source.stream(*stream));
        }
    }
    return trackOf;
}

Timeline PartJoiner::timelineOf(std::size_t part) const {
    const Source& source = *mSources[part];
    std::vector<AVMediaType> lanes;
    for (const TrackPlan& plan : mPlans) {
        const auto stream = plan.streamOfPart[part];
        const AVMediaType kind =
            stream ? source.stream(*stream).codecpar->codec_type : AVMEDIA_TYPE_UNKNOWN;
        // Nothing waits for subtitles: they may be far apart.
        lanes.push_back(kind == AVMEDIA_TYPE_SUBTITLE ? AVMEDIA_TYPE_UNKNOWN : kind);
    }
    return Timeline(mEnd, lanes, (source.format().iformat->flags & AVFMT_TS_DISCONT) != 0);
}

void PartJoiner::take(AVPacket& packet, const AVStream& stream, std::size_t track,
                      Timeline& timeline) {
    packet.dts = readTime(packet.dts, stream.time_base);
    packet.pts = readTime(packet.pts, stream.time_base);
    packet.duration = std::max<Ticks>(readTime(packet.duration, stream.time_base), 0);
    const bool isGuessed = stream.codecpar->video_delay > 0 && !mKeepsDecodingTimes;
    timeline.add({track, packet.dts, packet.pts, packet.duration, isGuessed,
                  hiddenPart(packet, *stream.codecpar)});
    if (isGuessed && packet.pts != kNoTime) {
        packet.dts = kNoTime;
    }
    mWaitingBytes += static_cast<std::size_t>(packet.size);
    if (mSpare.empty()) {
        mSpare.push_back(makePacket());
    }
    mWaiting.push_back({std::move(mSpare.back()), track});
    mSpare.pop_back();
    av_packet_move_ref(mWaiting.back().packet.get(), &packet);
    while (mWaitingBytes > kMostWaitingBytes && timeline.hasWaiting()) {
        timeline.decide();
        deliver(timeline);
    }
    deliver(timeline);
}

void PartJoiner::deliver(Timeline& timeline) {
    while (timeline.hasOffset()) {
        Waiting next = std::move(mWaiting.front());
        mWaiting.pop_front();
        AVPacket& packet = *next.packet;
        mWaitingBytes -= static_cast<std::size_t>(packet.size);
        const Ticks offset = timeline.takeOffset();
        mOffset = mOffset.value_or(offset);
        packet.dts = packet.dts == kNoTime ? kNoTime : addTimes(packet.dts, offset);
        packet.pts = packet.pts == kNoTime ? kNoTime : addTimes(packet.pts, offset);
        mTracks[next.track]->accept(packet);
        av_packet_unref(&packet);
        mSpare.push_back(std::move(next.packet));
    }
}

void PartJoiner::addChapters(const Source& source, Ticks end) {
    for (Chapter& chapter : source.chapters()) {
        // What begins before the part's first packet, begins with it.
        const Ticks offset = mOffset.value_or(mEnd);
        chapter.begin = std::max(addTimes(chapter.begin, offset), mEnd);
        chapter.end = std::min(addTimes(chapter.end, offset), end);
        if (chapter.begin < end) {
            mChapters.push_back(std::move(chapter));
        } else {
            trace(TraceLevel::Warning, text("Chapter \"", chapter.title, "\" of \"", source.path(),
                                            "\" is left out: it begins behind the end"));
        }
    }
}

void PartJoiner::noteProgress(const AVPacket& packet, const Source& source) {
    const auto size = static_cast<double>(source.state().size);
    const Ticks time = readTime(
        packet.pts, source.stream(static_cast<std::size_t>(packet.stream_index)).time_base);
    double done = 0;
    if (source.duration() > 0 && time != kNoTime) {
        done = size * static_cast<double>(time - source.start()) /
               static_cast<double>(source.duration());
    } else if (packet.pos >= 0) {
        done = static_cast<double>(packet.pos);
    }
    mProgress.update((static_cast<double>(mBefore) + std::clamp(done, 0.0, size)) /
                     static_cast<double>(mBytes));
}

} // namespace zelcore
