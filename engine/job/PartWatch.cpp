#include "engine/job/PartWatch.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace zelcore {

namespace {

/// What containers say of a stream's length is a little more or less than its packets' sum.
constexpr Ticks kToleratedEnd = kTicks.den / 5;
/// A length beyond a day is itself damaged.
constexpr Ticks kBelievable = 24 * 3600 * Ticks{kTicks.den};

Ticks stepOf(const AVStream& stream, const AVPacket& packet) {
    if (packet.duration > 0) {
        return toTicks(packet.duration, stream.time_base);
    }
    const AVRational rate = stream.avg_frame_rate;
    return rate.num > 0 && rate.den > 0 ? toTicks(1, av_inv_q(rate)) : 0;
}

/// Where pictures are shown in another order than decoded, decoding times may be guessed from those
/// before.
int packetsToShowAGap(const AVStream* stream) {
    return stream == nullptr ? 0 : 1 + std::clamp(stream->codecpar->video_delay, 0, 16);
}

Ticks declaredEnd(const Source& source, const AVStream& stream) {
    if (stream.duration != kNoTime && stream.duration > 0) {
        const std::int64_t start = stream.start_time == kNoTime ? 0 : stream.start_time;
        return toTicks(addTimes(start, stream.duration), stream.time_base);
    }
    return source.duration() > 0 ? addTimes(source.start(), source.duration()) : 0;
}

} // namespace

PartWatch::PartWatch(const Source& source, const std::vector<TrackPlan>& plans, std::size_t part,
                     Ticks offset, Losses& losses)
    : mSource(source), mOffset(offset), mLosses(losses), mStreams(source.streamCount()) {
    for (std::size_t track = 0; track < plans.size(); ++track) {
        const auto index = plans[track].streamOfPart[part];
        if (!index) {
            continue;
        }
        if (isTextSubtitle(source.stream(*index))) {
            mTexts.insert(*index);
            continue;
        }
        Stream& stream = mStreams[*index];
        stream.stream = &source.stream(*index);
        stream.track = track;
        if (plans[track].isCopied) {
            stream.shape = std::make_unique<PacketShape>(*stream.stream->codecpar);
            stream.check = std::make_unique<CopyCheck>(*stream.stream, offset,
                                                       plans[track].keepsGroups, losses);
        }
    }
}

bool PartWatch::look(AVPacket& packet) {
    if (passesBrokenPlace(packet)) {
        mUntold = mUntold.value_or(mEnd);
        for (Stream& each : mStreams) {
            each.inDoubt = packetsToShowAGap(each.stream);
        }
    }
    const auto index = static_cast<std::size_t>(packet.stream_index);
    if (index < mStreams.size() && mStreams[index].stream != nullptr) {
        return lookAtPlanned(mStreams[index], packet);
    }
    if (mTexts.contains(index)) {
        return true; // gaps in it are no loss
    }
    noteUnplanned(packet);
    return false;
}

bool PartWatch::lookAtPlanned(Stream& stream, AVPacket& packet) {
    if (av_packet_get_side_data(&packet, AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr) {
        throw Failure(ErrorCode::SourceEncrypted,
                      text("Source \"", mSource.path(), "\" is encrypted"));
    }
    if (stream.check != nullptr) {
        refuseToCopyWhatChanges(stream, packet);
    }
    stream.hasKey = stream.hasKey || (packet.flags & AV_PKT_FLAG_KEY) != 0;
    const bool isUntimed = packet.dts == kNoTime && packet.pts == kNoTime;
    if (isUntimed && stream.check != nullptr && stream.end != kNoTime) {
        packet.dts = av_rescale_q(stream.end, kTicks, stream.stream->time_base);
        packet.pts = packet.dts;
    }
    const bool isCorrupt = isUntimed || (packet.flags & AV_PKT_FLAG_CORRUPT) != 0;
    const bool isInDoubt = stream.inDoubt > 0 || isCorrupt;
    stream.inDoubt = isCorrupt ? packetsToShowAGap(stream.stream) : std::max(stream.inDoubt - 1, 0);
    // Decoding times rise evenly, presentation times do not.
    const std::int64_t time = packet.dts == kNoTime ? packet.pts : packet.dts;
    if (time != kNoTime) {
        const Ticks begin = toTicks(time, stream.stream->time_base);
        const Ticks step = stepOf(*stream.stream, packet);
        if (isInDoubt && stream.end != kNoTime && begin - stream.end > step / 2) {
            addGap(stream, begin, step);
        }
        stream.end = addTimes(begin, step);
        mEnd = std::max(mEnd, stream.end);
    }
    return stream.check == nullptr || stream.check->look(packet, isInDoubt);
}

void PartWatch::refuseToCopyWhatChanges(Stream& stream, const AVPacket& packet) const {
    std::size_t size = 0;
    const std::uint8_t* header = av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &size);
    const AVCodecParameters& known = *stream.stream->codecpar;
    const bool isNew = header != nullptr && size > 0 &&
                       (size != static_cast<std::size_t>(known.extradata_size) ||
                        std::memcmp(header, known.extradata, size) != 0);
    if (isNew || stream.shape->changesHeader(packet)) {
        throw NotCopyable{stream.track, "its codec data changes on the way"};
    }
    if (stream.shape->isPartOfFrame(packet)) {
        throw NotCopyable{stream.track, "its frames are not whole"};
    }
    const bool isDiscarded = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
    if (isDiscarded && stream.hasShown) {
        throw NotCopyable{stream.track, "pieces of it are not to be shown"};
    }
    stream.hasShown = stream.hasShown || !isDiscarded;
}

void PartWatch::noteUnplanned(const AVPacket& packet) {
    const auto index = static_cast<std::size_t>(packet.stream_index);
    const AVMediaType kind = mSource.kindOf(index);
    const bool isPicture = index >= mSource.streamCount() || !isCover(mSource.stream(index));
    if ((kind == AVMEDIA_TYPE_VIDEO || kind == AVMEDIA_TYPE_AUDIO) && isPicture) {
        add(kind, LossCause::Unusable, mEnd, 0, 0);
    }
}

bool PartWatch::passesBrokenPlace(const AVPacket& packet) {
    const std::vector<std::int64_t>& places = mSource.brokenAt();
    const std::size_t before = mPassed;
    while (mPassed < places.size() && packet.pos >= 0 && places[mPassed] <= packet.pos) {
        mPassed++;
    }
    return mPassed > before;
}

void PartWatch::addGap(const Stream& stream, Ticks begin, Ticks step) {
    // A damaged time tells nothing.
    const Ticks most = mSource.duration() > 0 ? mSource.duration() : INT64_MAX;
    const Ticks gap = std::min(begin - stream.end, most);
    const AVCodecParameters& parameters = *stream.stream->codecpar;
    const bool isSound = parameters.codec_type == AVMEDIA_TYPE_AUDIO;
    const std::int64_t pieces = isSound    ? av_rescale_q(gap, kTicks, {1, parameters.sample_rate})
                                : step > 0 ? std::max<std::int64_t>(gap / step, 1)
                                           : 0;
    add(parameters.codec_type, LossCause::Damaged, stream.end, gap, pieces);
    mUntold.reset();
}

void PartWatch::end() {
    for (Stream& each : mStreams) {
        if (each.check != nullptr) {
            each.check->end();
            if (each.check->hasDecodedNothing()) {
                throw NotCopyable{each.track, "nothing of it decodes"};
            }
            if (each.end != kNoTime && !each.hasKey) {
                throw NotCopyable{each.track, "no player finds a picture to begin with"};
            }
        }
    }
    if (mUntold) {
        add(AVMEDIA_TYPE_UNKNOWN, LossCause::Damaged, *mUntold, 0, 0);
    }
    if (mSource.isCutShort() || mSource.isUnreadToItsEnd() || mPassed < mSource.brokenAt().size()) {
        addMissingEnd();
    }
}

void PartWatch::addMissingEnd() {
    bool isTold = false;
    for (const Stream& each : mStreams) {
        if (each.stream == nullptr) {
            continue;
        }
        const Ticks reached = each.end == kNoTime ? mSource.start() : each.end;
        const Ticks missing = declaredEnd(mSource, *each.stream) - reached;
        if (missing > kToleratedEnd) {
            add(each.stream->codecpar->codec_type, LossCause::CutShort, reached,
                missing < kBelievable ? missing : 0, 0);
            isTold = true;
        }
    }
    // What a live recording holds behind its last whole packet nobody knows.
    if (!isTold && (mSource.isCutShort() || mSource.isUnreadToItsEnd())) {
        const auto isPlanned = [](const Stream& each) { return each.stream != nullptr; };
        const bool isOne = std::ranges::count_if(mStreams, isPlanned) == 1;
        add(isOne ? std::ranges::find_if(mStreams, isPlanned)->stream->codecpar->codec_type
                  : AVMEDIA_TYPE_UNKNOWN,
            LossCause::CutShort, mEnd, estimatedMissing(), 0);
    }
}

Ticks PartWatch::estimatedMissing() const {
    // By the bytes: exact for sound that is not compressed.
    const Ticks read = mEnd - mSource.start();
    const auto size = static_cast<std::int64_t>(mSource.state().size);
    return read <= 0 ? 0
                     : av_rescale(read, static_cast<std::int64_t>(mSource.missingBytes()), size);
}

void PartWatch::add(AVMediaType kind, LossCause cause, Ticks begin, Ticks duration,
                    std::int64_t pieces) {
    mLosses.add({kind, cause, addTimes(begin, mOffset), duration, pieces});
}

} // namespace zelcore
