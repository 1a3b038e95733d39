#include "engine/media/Source.h"

#include "engine/files/DeclaredSize.h"
#include "engine/platform/OsPath.h"
#include "engine/support/Trace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>

namespace zelcore {

namespace {

// Containers that hold recordings. Left out on purpose: playlists and scripts, which name further
// files, and raw formats, whose probes take other data for their own.
constexpr const char* kContainers =
    "matroska,webm,mov,mp4,m4a,3gp,3g2,mj2,flv,live_flv,mpegts,mpeg,avi,asf,wav,w64,aiff,caf,ogg,"
    "flac,mp3,aac,ac3,eac3,amr,mxf,nut,ivf,au";

// Nothing but the file itself is ever opened, whatever the recording refers to.
int refuseToOpen(AVFormatContext* /*format*/, AVIOContext** /*io*/, const char* /*url*/,
                 int /*flags*/, AVDictionary** /*options*/) {
    return AVERROR(EACCES);
}

/// Of these, every byte up to the end is looked at. Others keep tables at their end.
constexpr std::array kStreamed = {"matroska", "flv", "mpegts", "ogg"};

/// What libavformat looks through before it says that it recognises nothing.
constexpr std::int64_t kResync = 65536;
/// What is left over at a file's end may be too short for its container's smallest piece.
constexpr std::uint64_t kShortestTail = 1024;
/// In a row; an index may name many packets that are not there.
constexpr int kMostFailures = 5000;

bool isPicture(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream);
}

bool isEncrypted(const AVStream* stream) {
    static constexpr std::array tags = {MKTAG('e', 'n', 'c', 'v'), MKTAG('e', 'n', 'c', 'a'),
                                        MKTAG('d', 'r', 'm', 'i'), MKTAG('d', 'r', 'm', 's')};
    return std::ranges::find(tags, stream->codecpar->codec_tag) != tags.end() ||
           av_dict_get(stream->metadata, "enc_key_id", nullptr, 0) != nullptr ||
           av_stream_get_side_data(stream, AV_PKT_DATA_ENCRYPTION_INIT_INFO, nullptr) != nullptr;
}

/// Demuxers step over what they have no memory for as if it were damaged; then only errno tells. It
/// may tell so without need, where the C library finds the memory elsewhere. While there is room
/// for more than any demuxer takes at a time, nothing has failed for want of it.
bool isMemoryShort(int result) {
    constexpr std::size_t kMostAtATime = 320U << 20U;
    return (result == AVERROR(ENOMEM) || errno == ENOMEM) && !isMemoryLeft(kMostAtATime);
}

int isStopRaised(void* stop) {
    return static_cast<const StopFlag*>(stop)->isRaised() ? 1 : 0;
}

void copyStream(const AVStream& from, AVStream& to) {
    require(avcodec_parameters_copy(to.codecpar, from.codecpar), "stream parameters");
    require(av_dict_copy(&to.metadata, from.metadata, 0), "stream metadata");
    to.id = from.id;
    to.time_base = from.time_base;
    to.start_time = from.start_time;
    to.duration = from.duration;
    to.nb_frames = from.nb_frames;
    to.disposition = from.disposition;
    to.sample_aspect_ratio = from.sample_aspect_ratio;
    to.avg_frame_rate = from.avg_frame_rate;
    to.r_frame_rate = from.r_frame_rate;
    for (const AVPacketSideData& data :
         std::span(from.side_data, static_cast<std::size_t>(from.nb_side_data))) {
        std::uint8_t* copy = av_stream_new_side_data(&to, data.type, data.size);
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        std::copy_n(data.data, data.size, copy);
    }
}

MuxerPtr copyOfWhatIsKnown(const AVFormatContext& from) {
    auto copy = owned<MuxerPtr>(avformat_alloc_context());
    for (const AVStream* each : std::span(from.streams, from.nb_streams)) {
        AVStream* stream = avformat_new_stream(copy.get(), nullptr);
        if (stream == nullptr) {
            throw std::bad_alloc();
        }
        copyStream(*each, *stream);
    }
    require(av_dict_copy(&copy->metadata, from.metadata, 0), "metadata");
    copy->iformat = from.iformat;
    copy->start_time = from.start_time;
    copy->duration = from.duration;
    copy->bit_rate = from.bit_rate;
    return copy;
}

} // namespace

bool isTextSubtitle(const AVStream& stream) {
    static constexpr std::array codecs = {AV_CODEC_ID_SUBRIP, AV_CODEC_ID_WEBVTT, AV_CODEC_ID_ASS,
                                          AV_CODEC_ID_MOV_TEXT, AV_CODEC_ID_TEXT};
    const AVCodecParameters& parameters = *stream.codecpar;
    return parameters.codec_type == AVMEDIA_TYPE_SUBTITLE &&
           std::ranges::find(codecs, parameters.codec_id) != codecs.end() &&
           avcodec_find_decoder(parameters.codec_id) != nullptr;
}

Source::Source(std::string path, const StopFlag& stop) : mPath(std::move(path)), mStop(stop) {
    openDemuxer();
    mState = mFile->state();
    mKnown = copyOfWhatIsKnown(*mDemuxer);
    const auto streams = std::span(mKnown->streams, mKnown->nb_streams);
    if (std::ranges::none_of(streams, [this](const AVStream* each) { return isWanted(*each); })) {
        throw Failure(ErrorCode::NothingToConvert,
                      text("Source \"", mPath, "\" has neither sound nor picture"));
    }
    if (const auto found = std::ranges::find_if(streams, isEncrypted); found != streams.end()) {
        throw Failure(ErrorCode::SourceEncrypted,
                      text("Stream ", (*found)->index, " of \"", mPath, "\" is encrypted"));
    }
    discardUnwanted();
}

void Source::open() {
    if (mDemuxer != nullptr) {
        return;
    }
    openDemuxer();
    const auto isAsKnown = [this](std::size_t index) {
        return mDemuxer->streams[index]->codecpar->codec_id == stream(index).codecpar->codec_id;
    };
    bool isUnchanged = mFile->state() == mState && mDemuxer->nb_streams >= mKnown->nb_streams;
    for (std::size_t i = 0; isUnchanged && i < streamCount(); ++i) {
        isUnchanged = isAsKnown(i);
    }
    if (!isUnchanged) {
        throw Failure(ErrorCode::SourceChanged,
                      text("Source \"", mPath, "\" changed before its turn came"));
    }
    discardUnwanted();
}

void Source::close() {
    mBlockTimes.reset();
    mDemuxer.reset();
    mFile.reset();
}

void Source::openDemuxer() {
    mFile = std::make_unique<SourceFile>(mPath, mStop);
    const std::uint64_t declared = declaredSize(*mFile);
    const std::uint64_t size = mFile->state().size;
    mMissingBytes = declared > size + 1 ? declared - size : 0;
    mDeclaredEnd = declared == 0 ? size : std::min(declared, size);
    mComplaints = Complaints();
    mSkippedFrom.reset();
    AVFormatContext* demuxer = owned<DemuxerPtr>(avformat_alloc_context()).release();
    demuxer->pb = mFile->io();
    demuxer->flags |= AVFMT_FLAG_CUSTOM_IO;
    demuxer->io_open = refuseToOpen;
    // FFmpeg's callback takes no const pointer; isStopRaised only reads.
    demuxer->interrupt_callback = {isStopRaised, const_cast<StopFlag*>(&mStop)};
    errno = 0;
    AVDictionary* options = nullptr;
    const int isSet = av_dict_set(&options, "format_whitelist", kContainers, 0);
    // On failure the context is freed and the pointer null.
    int result = isSet < 0 ? isSet : avformat_open_input(&demuxer, "", nullptr, &options);
    av_dict_free(&options);
    mDemuxer.reset(demuxer);
    if (result >= 0) {
        const Complaints::Listening listening(mComplaints, *mDemuxer);
        result = avformat_find_stream_info(mDemuxer.get(), nullptr);
    }
    const bool isShort = isMemoryShort(result);
    mStop.throwIfRaised();
    mFile->throwIfUnsound();
    if (isShort) {
        throw std::bad_alloc();
    }
    if (result < 0 && lacksIndex(*mFile)) {
        throw Failure(
            ErrorCode::SourceTruncated,
            text("Source \"", mPath, "\" is an MP4 or MOV file without its index: it was ",
                 "cut off or never completed, and nothing in it can be read"));
    }
    if (result < 0 && isCutShort()) {
        throw Failure(
            ErrorCode::SourceTruncated,
            text("Source \"", mPath, "\" is cut off before anything in it can be read: it ", "has ",
                 size, " bytes of ", declared));
    }
    if (result < 0) {
        throw Failure(ErrorCode::NotARecording,
                      text("Source \"", mPath, "\" is no recording: ", ffmpegErrorText(result)));
    }
    mBlockTimes.emplace(*mFile, std::strstr(mDemuxer->iformat->name, "matroska") != nullptr);
}

bool Source::isWanted(const AVStream& stream) const {
    const AVCodecParameters& parameters = *stream.codecpar;
    if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
        return parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0;
    }
    return isPicture(stream) && parameters.width > 0 && parameters.height > 0;
}

void Source::discardUnwanted() {
    for (AVStream* each : std::span(mDemuxer->streams, mDemuxer->nb_streams)) {
        if (!isPicture(*each) && each->codecpar->codec_type != AVMEDIA_TYPE_AUDIO &&
            !isTextSubtitle(*each)) {
            each->discard = AVDISCARD_ALL;
        }
    }
}

void Source::traceUnwanted(std::optional<int> kept) const {
    for (const AVStream* each : std::span(mKnown->streams, mKnown->nb_streams)) {
        const bool isListOfChapters =
            each->codecpar->codec_tag == MKTAG('t', 'e', 'x', 't') && mDemuxer->nb_chapters > 0;
        if (!isWanted(*each) && !isTextSubtitle(*each) && kept != each->index &&
            !isListOfChapters) {
            const char* kind = av_get_media_type_string(each->codecpar->codec_type);
            trace(TraceLevel::Warning, text("Stream ", each->index, " of \"", mPath,
                                            "\" is left out: ", kind == nullptr ? "unknown" : kind,
                                            " (", avcodec_get_name(each->codecpar->codec_id), ")"));
        }
    }
}

Ticks Source::start() const {
    Ticks earliest = kNoTime;
    for (const AVStream* each : std::span(mKnown->streams, mKnown->nb_streams)) {
        if (isWanted(*each) && each->start_time != kNoTime) {
            const Ticks begin = toTicks(each->start_time, each->time_base);
            earliest = earliest == kNoTime ? begin : std::min(earliest, begin);
        }
    }
    return earliest == kNoTime ? 0 : earliest;
}

Ticks Source::duration() const {
    return mKnown->duration == kNoTime || mKnown->duration < 0
               ? 0
               : toTicks(mKnown->duration, av_make_q(1, AV_TIME_BASE));
}

bool Source::read(AVPacket& packet) {
    const Complaints::Listening listening(mComplaints, *mDemuxer);
    for (int failures = 0; failures < kMostFailures;) {
        const std::int64_t before = avio_tell(mDemuxer->pb);
        const int result = readOnce(packet);
        const std::int64_t after = avio_tell(mDemuxer->pb);
        if (result >= 0) {
            mBlockTimes->restore(packet, *mDemuxer->streams[packet.stream_index]);
            if (mSkippedFrom) {
                mComplaints.add(static_cast<std::int64_t>(*mSkippedFrom));
                mSkippedFrom.reset();
            }
            return true;
        }
        // Past the end of the file, the index may still name packets before it.
        const bool isEnd = result == AVERROR_EOF && !isCutShort() && !isMisledTo(after);
        if (result == AVERROR_EXIT || isEnd) {
            break;
        }
        if (result == AVERROR(EAGAIN)) {
            mSkippedFrom = mSkippedFrom.value_or(static_cast<std::uint64_t>(after - kResync));
            failures = after > before ? 0 : failures;
        } else {
            // Packets that are read in another order than they lie in follow anywhere.
            mComplaints.add(isMisledTo(after) ? 0 : before);
        }
        ++failures;
    }
    noteEnd();
    return false;
}

bool Source::isMisledTo(std::int64_t position) const {
    return std::strstr(mDemuxer->iformat->name, "mov") != nullptr &&
           position > static_cast<std::int64_t>(mFile->state().size);
}

int Source::readOnce(AVPacket& packet) {
    mStop.throwIfRaised();
    errno = 0;
    const int result = av_read_frame(mDemuxer.get(), &packet);
    if (isMemoryShort(result)) {
        throw std::bad_alloc();
    }
    if (result < 0 && result != AVERROR_EXIT) {
        mFile->throwIfUnsound();
    }
    return result;
}

void Source::noteEnd() {
    const bool isStream = std::ranges::any_of(
        kStreamed, [this](const char* name) { return std::strstr(mDemuxer->iformat->name, name); });
    const std::uint64_t end =
        mSkippedFrom.value_or(static_cast<std::uint64_t>(avio_tell(mDemuxer->pb)));
    mIsUnreadToItsEnd = isStream && end + kShortestTail < mDeclaredEnd && !isFilledWithZeros(end);
}

bool Source::isFilledWithZeros(std::uint64_t from) const {
    std::vector<char> bytes(1 << 16);
    for (std::size_t got = 1; got > 0; from += got) {
        got = mFile->peek(from, bytes.data(), bytes.size());
        mStop.throwIfRaised();
        if (std::ranges::any_of(std::span(bytes).first(got), [](char each) { return each != 0; })) {
            return false;
        }
    }
    return true;
}

} // namespace zelcore
