#include "engine/core/PartJoiner.h"

#include "engine/core/Trace.h"

#include <algorithm>
#include <optional>

namespace zelcore {

PartJoiner::PartJoiner(const Sources& sources, const std::vector<TrackPlan>& plans,
                       const std::vector<std::unique_ptr<Track>>& tracks, Losses& losses,
                       const StopFlag& stop, Progress& progress)
    : mSources(sources),
      mPlans(plans),
      mTracks(tracks),
      mLosses(losses),
      mStop(stop),
      mProgress(progress) {
    bool isKnown = true;
    for (const auto& source : sources) {
        isKnown = isKnown && source->duration() > 0;
        mTotal += source->duration();
        mBytes += source->state().size;
    }
    mTotal = isKnown ? mTotal : 0;
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
    // A first part may begin a little before zero, which is how encoders' start-up samples are
    // kept out of hearing; a later one must not reach back into the part before it.
    const Ticks start = source.start();
    const Ticks offset = part == 0 ? -std::max<Ticks>(start, 0) : addTimes(mEnd, -start);
    std::vector<std::optional<std::size_t>> trackOf(source.streamCount());
    for (std::size_t track = 0; track < mPlans.size(); ++track) {
        if (const auto stream = mPlans[track].streamOfPart[part]) {
            trackOf[*stream] = track;
            mTracks[track]->beginPart(source.stream(*stream), offset);
        }
    }
    Ticks end = mEnd;
    const PacketPtr packet = makePacket();
    while (source.read(*packet)) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        if (index >= trackOf.size() || !trackOf[index]) {
            source.throwIfNeeded(index);
        } else {
            end = std::max(end, endOf(*packet, source.stream(index), offset));
            noteProgress(*packet, source, end);
            mTracks[*trackOf[index]]->accept(*packet);
        }
        av_packet_unref(packet.get());
        mStop.throwIfRaised();
    }
    mStop.throwIfRaised();
    for (const auto& track : trackOf) {
        if (track) {
            mTracks[*track]->endPart();
        }
    }
    trace(TraceLevel::Debug,
          text("Part ", part + 1, " covers ", toSeconds(mEnd), " s to ", toSeconds(end), " s"));
    mEnd = end;
}

Ticks PartJoiner::endOf(const AVPacket& packet, const AVStream& stream, Ticks offset) {
    const std::int64_t time = packet.pts == kNoTime ? packet.dts : packet.pts;
    if (time == kNoTime) {
        return 0;
    }
    std::int64_t duration = packet.duration;
    if (duration <= 0 && stream.avg_frame_rate.num > 0) {
        duration = av_rescale_q(1, av_inv_q(stream.avg_frame_rate), stream.time_base);
    }
    return addTimes(toTicks(addTimes(time, std::max<std::int64_t>(duration, 0)), stream.time_base),
                    offset);
}

void PartJoiner::noteProgress(const AVPacket& packet, const Source& source, Ticks end) {
    if (mTotal > 0) {
        mProgress.update(static_cast<double>(end) / static_cast<double>(mTotal));
    } else if (packet.pos >= 0) {
        const auto done = std::min(static_cast<std::uint64_t>(packet.pos), source.state().size);
        mProgress.update(static_cast<double>(mBefore + done) / static_cast<double>(mBytes));
    }
}

} // namespace zelcore
