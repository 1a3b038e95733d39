#include "engine/media/Muxer.h"

#include "engine/support/Trace.h"

#include <algorithm>
#include <span>
#include <string>

namespace zelcore {

namespace {

bool saysColours(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    return parameters.codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream) &&
           (parameters.color_range != AVCOL_RANGE_UNSPECIFIED ||
            parameters.color_space != AVCOL_SPC_UNSPECIFIED ||
            parameters.color_primaries != AVCOL_PRI_UNSPECIFIED ||
            parameters.color_trc != AVCOL_TRC_UNSPECIFIED);
}

/// Some tracks have nothing to write for long; the others do not wait for them.
constexpr std::int64_t kLongestWait = AV_TIME_BASE;

/// The muxer asks for the file that it has written, to move its content.
int openWritten(AVFormatContext* format, AVIOContext** io, const char* /*url*/, int /*flags*/,
                AVDictionary** /*options*/) noexcept {
    try {
        *io = static_cast<DestinationFile*>(format->opaque)->beginMove();
        return 0;
    } catch (const std::bad_alloc&) {
        return AVERROR(ENOMEM);
    }
}

/// By itself it takes a failure to read for the end.
int closeWritten(AVFormatContext* /*format*/, AVIOContext* io) noexcept {
    return io->error;
}

} // namespace

Muxer::Muxer(DestinationFile& file, bool isIndexInFront)
    : mFile(file), mIsIndexInFront(isIndexInFront) {
    AVFormatContext* format = nullptr;
    require(avformat_alloc_output_context2(&format, nullptr, "mp4", nullptr), "MP4 muxer");
    mFormat.reset(format);
    mFormat->pb = file.io();
    mFormat->flags |= AVFMT_FLAG_CUSTOM_IO;
    mFormat->opaque = &file;
    mFormat->io_open = &openWritten;
    mFormat->io_close2 = &closeWritten;
}

AVStream& Muxer::addTrack(const AVCodecParameters& parameters, AVRational timeBase) {
    AVStream* stream = avformat_new_stream(mFormat.get(), nullptr);
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    require(avcodec_parameters_copy(stream->codecpar, &parameters), "track parameters");
    // Not the source container's: the muxer chooses its own. By itself it would choose the one for
    // HEVC with decoder data among its pictures, which some players refuse.
    stream->codecpar->codec_tag =
        parameters.codec_id == AV_CODEC_ID_HEVC ? MKTAG('h', 'v', 'c', '1') : 0;
    if (parameters.codec_type == AVMEDIA_TYPE_SUBTITLE) {
        mFormat->max_interleave_delta = kLongestWait;
    }
    stream->time_base = timeBase;
    mWritten.emplace_back(parameters);
    mLanes.push_back(
        Lane{.extent = Extent(parameters.codec_type), .held = makePacket(), .adtsFilter = {}});
    return *stream;
}

void Muxer::addCover(const Cover& cover) {
    AVStream* stream = avformat_new_stream(mFormat.get(), nullptr);
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    require(avcodec_parameters_copy(stream->codecpar, &cover.parameters()), "cover");
    stream->codecpar->codec_tag = 0;
    // MP4 does not keep its size, but the muxer wants one.
    stream->codecpar->width = std::max(stream->codecpar->width, 1);
    stream->codecpar->height = std::max(stream->codecpar->height, 1);
    stream->disposition = AV_DISPOSITION_ATTACHED_PIC; // nothing else makes it one
    const AVPacket& picture = cover.picture();
    mCover.assign(picture.data, picture.data + picture.size);
    mFormat->max_interleave_delta = kLongestWait;
}

void Muxer::copyMetadata(const AVFormatContext& from) {
    require(av_dict_copy(&mFormat->metadata, from.metadata, AV_DICT_DONT_OVERWRITE), "metadata");
}

void Muxer::writeHeader() {
    AVDictionary* options = nullptr;
    // A timecode in the metadata would become a track of its own, which no source has.
    av_dict_set(&options, "write_tmcd", "0", 0);
    std::string flags = mIsIndexInFront ? "+faststart" : "";
    if (std::ranges::any_of(std::span(mFormat->streams, mFormat->nb_streams),
                            [](const AVStream* each) { return saysColours(*each); })) {
        // By itself the muxer writes them only where all of them are known.
        flags += "+write_colr";
    }
    if (!flags.empty()) {
        av_dict_set(&options, "movflags", flags.c_str(), 0);
    }
    const int result = avformat_write_header(mFormat.get(), &options);
    av_dict_free(&options);
    throwIfFailed(result, "begin the MP4 file");
    if (!mIsIndexInFront) { // else they move to other places
        mReadBehind = std::make_unique<ReadBehind>(
            mFile.temporaryPath(), static_cast<std::uint64_t>(avio_tell(mFormat->pb)));
    }
    if (!mCover.empty()) {
        writeCover();
    }
}

void Muxer::writeCover() {
    const PacketPtr packet = makePacket();
    require(av_new_packet(packet.get(), static_cast<int>(mCover.size())), "cover");
    std::ranges::copy(mCover, packet->data);
    packet->stream_index = static_cast<int>(mWritten.size());
    packet->pts = packet->dts = 0;
    packet->flags |= AV_PKT_FLAG_KEY;
    throwIfFailed(av_interleaved_write_frame(mFormat.get(), packet.get()), "write the cover");
}

void Muxer::write(std::size_t track, AVPacket& packet, AVRational timeBase) {
    if (packet.size == 0) {
        return; // MP4 has no place for it
    }
    const AVStream& stream = *mFormat->streams[track];
    mLanes[track].adtsFilter.apply(packet, *stream.codecpar, timeBase);
    packet.stream_index = static_cast<int>(track);
    packet.pos = -1;
    if (packet.dts == kNoTime) {
        packet.dts = packet.pts;
    }
    if (packet.pts == kNoTime) {
        packet.pts = packet.dts;
    }
    if (packet.dts == kNoTime) {
        throw Failure(ErrorCode::SourceDamaged, "A packet carries no time at all");
    }
    av_packet_rescale_ts(&packet, timeBase, stream.time_base);
    Lane& lane = mLanes[track];
    if (lane.lastDts != kNoTime && packet.dts <= lane.lastDts) {
        if (isTraced(TraceLevel::Trace)) {
            trace(TraceLevel::Trace, text("Track ", track, ": decoding time ", packet.dts,
                                          " moved behind ", lane.lastDts));
        }
        packet.dts = addTimes(lane.lastDts, 1);
        packet.pts = std::max(packet.pts, packet.dts);
    }
    const std::int64_t longest =
        std::max(packet.pts - packet.dts, lane.lastDts == kNoTime ? 0 : packet.dts - lane.lastDts);
    if (longest > INT32_MAX) {
        throw Failure(ErrorCode::SourceDamaged, text("Track ", track, " pauses for ",
                                                     toSeconds(toTicks(longest, stream.time_base)),
                                                     " s, longer than MP4 can hold"));
    }
    lane.lastDts = packet.dts;
    lane.extent.add(toTicks(packet.pts, stream.time_base),
                    toTicks(packet.duration, stream.time_base));
    // Text lasts as long as it says, but not beyond the next.
    writeHeld(track, isText(track) && lane.held->data != nullptr
                         ? std::min(lane.held->duration, packet.dts - lane.held->dts)
                         : 1);
    av_packet_move_ref(lane.held.get(), &packet);
}

void Muxer::writeHeld(std::size_t track, std::int64_t duration) {
    AVPacket& packet = *mLanes[track].held;
    if (packet.data == nullptr) {
        return;
    }
    packet.duration = duration;
    const AVRational base = mFormat->streams[track]->time_base;
    const StoredPacket stored = mWritten[track].add(packet, base);
    if (mReadBehind != nullptr) {
        mReadBehind->expect(track, stored.hash, static_cast<std::size_t>(stored.size),
                            toTicks(packet.dts, base));
    }
    throwIfFailed(av_interleaved_write_frame(mFormat.get(), &packet), "write a packet");
    if (mReadBehind != nullptr) {
        mReadBehind->advance(mFile.handedToDisk());
    }
}

void Muxer::finishTrack(std::size_t track) {
    const Lane& lane = mLanes[track];
    if (lane.extent.isEmpty()) {
        return;
    }
    // MP4 keeps when packets are decoded and how much later they are shown; of the durations that
    // it is given it uses the last packet's, to end the track.
    const AVRational base = mFormat->streams[track]->time_base;
    const std::int64_t end = av_rescale_q(lane.extent.end(), kTicks, base);
    const std::int64_t duration = std::clamp<std::int64_t>(end - lane.held->pts, 1, INT32_MAX);
    writeHeld(track, duration);
}

void Muxer::setChapters(std::vector<Chapter> chapters) {
    mChapters = std::move(chapters);
    if (!mChapters.empty() && mChapters.front().begin >= kTicks.den / 1000) {
        // Players take the first one for the beginning of the file.
        mChapters.insert(mChapters.begin(), {0, mChapters.front().begin, {}});
    }
    addChapters(mChapters, *mFormat);
}

void Muxer::finish() {
    for (std::size_t track = 0; track < mLanes.size(); ++track) {
        finishTrack(track);
    }
    throwIfFailed(av_interleaved_write_frame(mFormat.get(), nullptr), "write the last packets");
    avio_flush(mFormat->pb);
    if (mReadBehind != nullptr && mFile.handedToDisk() > 0) {
        mReadBehind->advance(mFile.size());
    }
    mFile.beginIndex();
    throwIfFailed(av_write_trailer(mFormat.get()), "complete the MP4 file");
    avio_flush(mFormat->pb);
    throwIfFailed(mFormat->pb->error, "complete the MP4 file");
}

void Muxer::throwIfFailed(int result, const char* doing) const {
    if (result == AVERROR_EXIT) {
        throw Stopped{};
    }
    mFile.throwIfFailed();
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0) {
        throw Failure(ErrorCode::WriteFailed,
                      text("Could not ", doing, ": ", ffmpegErrorText(result)));
    }
}

} // namespace zelcore
