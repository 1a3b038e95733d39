#include "engine/verify/IndexCheck.h"

#include "engine/files/FinishedFileFault.h"
#include "engine/media/Cover.h"

#include <algorithm>
#include <array>
#include <span>

namespace zelcore {

namespace {

// The beginning of a track is written in thousandths of a second.
constexpr std::int64_t kStartTolerance = 2 * kTicks.den / 1000;

/// What stands where no text is shown: its length, which is none.
constexpr std::array<std::uint8_t, 2> kEmptyText{};
constexpr int kEmptyTextSize = kEmptyText.size();

template <class Value>
void expectSame(const char* what, const Value& wanted, const Value& found) {
    if (wanted != found) {
        throwFinishedFileFault(text("has ", what, " ", found, " instead of ", wanted));
    }
}

/// The same bytes, or for a byte stream each of its units, which the muxer lays out anew.
bool isDecoderData(std::span<const std::uint8_t> found, const WrittenTrack& track) {
    const std::span<const std::uint8_t> wanted = track.decoderData;
    if (track.codec == AV_CODEC_ID_MP3 || track.codec == AV_CODEC_ID_AC3) {
        return true; // each packet describes itself, and MP4 has no place for what AVI adds
    }
    if (wanted.empty() || std::ranges::equal(found, wanted)) {
        return !found.empty() ||
               (track.codec != AV_CODEC_ID_AAC && track.codec != AV_CODEC_ID_H264 &&
                track.codec != AV_CODEC_ID_HEVC);
    }
    if (track.isText()) { // the muxer adds the bit rate
        return found.size() >= wanted.size() &&
               std::ranges::equal(found.first(wanted.size()), wanted);
    }
    bool isSame = track.codec == AV_CODEC_ID_H264 || track.codec == AV_CODEC_ID_HEVC;
    ByteStreamUnits units(wanted);
    std::size_t sets = 0;
    for (std::span<const std::uint8_t> unit; isSame && units.next(unit);) {
        const unsigned kind = unit.empty()                      ? 0
                              : track.codec == AV_CODEC_ID_H264 ? unit[0] & 0x1FU
                                                                : unit[0] >> 1U;
        const bool isSet =
            track.codec == AV_CODEC_ID_H264 ? kind == 7 || kind == 8 : kind >= 32 && kind <= 34;
        if (isSet) {
            isSame =
                std::search(found.begin(), found.end(), unit.begin(), unit.end()) != found.end();
            ++sets;
        }
    }
    return isSame && sets > 0;
}

} // namespace

DemuxerPtr openFinished(FileInput& input) {
    AVFormatContext* demuxer = owned<DemuxerPtr>(avformat_alloc_context()).release();
    demuxer->pb = input.io();
    demuxer->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_NOFILLIN | AVFMT_FLAG_NOPARSE;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", "mov,mp4", 0);
    av_dict_set(&options, "advanced_editlist", "0", 0); // every packet counts, also those not shown
    const int result = avformat_open_input(&demuxer, "", nullptr, &options);
    av_dict_free(&options);
    if (result < 0) {
        throwFinishedFileFault("cannot be opened: " + ffmpegErrorText(result));
    }
    return DemuxerPtr(demuxer);
}

IndexCheck::IndexCheck(const OsFile& file, std::uint64_t size, const WrittenFile& written,
                       const StopFlag& stop)
    : mInput(file, size, stop), mStop(stop), mDemuxer(openFinished(mInput)) {
    // A track that got no packet, as of a microphone that was muted all along, is not in the file.
    for (const WrittenTrack& track : written.tracks) {
        if (track.packets > 0) {
            mTracks.push_back(&track);
        }
    }
    // The names of chapters are a track of their own, behind the others; the cover looks like one.
    const std::size_t others = (written.chapters.empty() ? 0 : 1) + (written.cover.empty() ? 0 : 1);
    expectSame("tracks", mTracks.size() + others, static_cast<std::size_t>(mDemuxer->nb_streams));
    for (std::size_t i = 0; i < mTracks.size(); ++i) {
        compareTrack(*mDemuxer->streams[i], *mTracks[i]);
    }
    compareChapters(written.chapters);
    compareCover(written.cover);
}

void IndexCheck::compareCover(const std::vector<std::uint8_t>& written) const {
    Cover found;
    found.takeFrom(*mDemuxer);
    const bool isSame =
        found.isEmpty()
            ? written.empty()
            : std::ranges::equal(
                  std::span(found.picture().data, static_cast<std::size_t>(found.picture().size)),
                  written);
    if (!isSame) {
        throwFinishedFileFault("has another cover than was written");
    }
}

void IndexCheck::compareChapters(const std::vector<Chapter>& written) const {
    const std::vector<Chapter> found = chaptersOf(*mDemuxer);
    expectSame("chapters", written.size(), found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        expectSame("a chapter named", written[i].title, found[i].title);
        if (std::abs(found[i].begin - written[i].begin) > kStartTolerance) {
            throwFinishedFileFault(
                text("has the chapter \"", found[i].title, "\" at another time"));
        }
    }
}

void IndexCheck::compareTrack(const AVStream& stream, const WrittenTrack& track) const {
    const AVCodecParameters& found = *stream.codecpar;
    expectSame("a track of type", static_cast<int>(track.type), static_cast<int>(found.codec_type));
    expectSame("a track of codec", static_cast<int>(track.codec), static_cast<int>(found.codec_id));
    if (track.type == AVMEDIA_TYPE_VIDEO) {
        expectSame("a width of", track.width, found.width);
        expectSame("a height of", track.height, found.height);
    } else if (track.codec == AV_CODEC_ID_AAC) {
        expectSame("a sample rate of", track.sampleRate, found.sample_rate);
    }
    if (!track.isText()) { // where no text is shown, the muxer puts empty packets
        expectSame("packets", track.packets, stream.nb_frames);
        expectSame("packets in its index", track.packets,
                   std::int64_t{avformat_index_get_entries_count(&stream)});
        expectSame("a duration of", track.duration(), stream.duration);
    }
    expectSame("a clock of", track.timeBase.den, stream.time_base.den);
    if (!isDecoderData({found.extradata, static_cast<std::size_t>(found.extradata_size)}, track)) {
        throwFinishedFileFault("has other decoder data than was written");
    }
}

std::vector<StoredSample> IndexCheck::samples(std::uint64_t end) const {
    std::vector<StoredSample> samples;
    int all = 0;
    for (std::size_t i = 0; i < mTracks.size(); ++i) {
        all += avformat_index_get_entries_count(mDemuxer->streams[i]);
    }
    samples.reserve(static_cast<std::size_t>(all)); // a long recording has a million
    for (std::size_t i = 0; i < mTracks.size(); ++i) {
        const auto& hashes = mTracks[i]->hashes;
        auto hash = hashes.begin();
        const int entries = avformat_index_get_entries_count(mDemuxer->streams[i]);
        for (int entry = 0; entry < entries; ++entry) {
            const AVIndexEntry& found = *avformat_index_get_entry(mDemuxer->streams[i], entry);
            const auto position = static_cast<std::uint64_t>(found.pos);
            const bool isEmptyText = mTracks[i]->isText() && found.size == kEmptyTextSize;
            if (isEmptyText && position >= end) {
                continue; // the last one is compared with the index
            }
            if (!isEmptyText && hash == hashes.end()) {
                throwFinishedFileFault("has more packets than were written");
            }
            samples.push_back({position,
                               isEmptyText ? hashOf(kEmptyText.data(), kEmptyText.size()) : *hash++,
                               static_cast<std::uint32_t>(found.size)});
        }
        if (hash != hashes.end()) {
            throwFinishedFileFault("has fewer packets than were written");
        }
    }
    std::ranges::sort(samples, {}, &StoredSample::position);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::uint64_t next = i + 1 < samples.size() ? samples[i + 1].position : end;
        if (samples[i].position + samples[i].size != next) {
            throwFinishedFileFault(
                text("has a hole or an overlap behind its packet at ", samples[i].position));
        }
    }
    return samples;
}

void IndexCheck::compareTimes() {
    struct Found {
        std::int64_t firstDts = 0;
        std::int64_t firstPts = 0;
        std::int64_t packets = 0;
        std::uint64_t times = 0;
    };
    std::vector<Found> all(mTracks.size());
    std::uint64_t first = UINT64_MAX;
    for (std::size_t i = 0; i < mTracks.size(); ++i) {
        const AVIndexEntry& entry = *avformat_index_get_entry(mDemuxer->streams[i], 0);
        first = std::min(first, static_cast<std::uint64_t>(entry.pos));
    }
    mInput.leaveOut(first, UINT64_MAX);
    const PacketPtr packet = makePacket();
    while (av_read_frame(mDemuxer.get(), packet.get()) >= 0) {
        mStop.throwIfRaised();
        if (static_cast<std::size_t>(packet->stream_index) >= all.size()) {
            av_packet_unref(packet.get());
            continue;
        }
        if (mTracks[static_cast<std::size_t>(packet->stream_index)]->isText() &&
            packet->size == kEmptyTextSize) {
            av_packet_unref(packet.get());
            continue;
        }
        Found& found = all[static_cast<std::size_t>(packet->stream_index)];
        if (found.packets++ == 0) {
            found.firstDts = packet->dts;
            found.firstPts = packet->pts;
        }
        const WrittenTrack& track = *mTracks[static_cast<std::size_t>(packet->stream_index)];
        const bool isKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
        found.times = WrittenTrack::chain(found.times, packet->dts - found.firstDts,
                                          packet->pts - found.firstPts, packet->size,
                                          isKey || track.type != AVMEDIA_TYPE_VIDEO);
        av_packet_unref(packet.get());
    }
    mStop.throwIfRaised();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const WrittenTrack& track = *mTracks[i];
        expectSame("packets with a time", track.packets, all[i].packets);
        if (track.times != all[i].times) {
            throwFinishedFileFault(
                text("has other times, sizes or key frames in track ", i, " than were written"));
        }
        const std::int64_t shift = all[i].firstPts - track.firstPts;
        if (std::abs(toTicks(shift, track.timeBase)) > kStartTolerance) {
            throwFinishedFileFault(text("begins track ", i, " ",
                                        toSeconds(toTicks(shift, track.timeBase)), " s late"));
        }
    }
}

} // namespace zelcore
