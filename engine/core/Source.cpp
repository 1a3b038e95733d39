#include "engine/core/Source.h"

#include "engine/core/DeclaredSize.h"
#include "engine/core/Trace.h"

#include <algorithm>
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

bool isPicture(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

int isStopRaised(void* stop) {
    return static_cast<const StopFlag*>(stop)->isRaised() ? 1 : 0;
}

} // namespace

Source::Source(const std::string& path, const StopFlag& stop)
    : mFile(std::make_unique<SourceFile>(path, stop)) {
    if (const auto declared = declaredSize(*mFile); declared > mFile->state().size + 1) {
        throw Failure(ErrorCode::SourceTruncated,
                      text("Source \"", path, "\" is cut short: it has ", mFile->state().size,
                           " bytes of ", declared));
    }
    AVFormatContext* demuxer = owned<DemuxerPtr>(avformat_alloc_context()).release();
    demuxer->pb = mFile->io();
    demuxer->flags |= AVFMT_FLAG_CUSTOM_IO;
    demuxer->io_open = refuseToOpen;
    // FFmpeg's callback takes no const pointer; isStopRaised only reads.
    demuxer->interrupt_callback = {isStopRaised, const_cast<StopFlag*>(&stop)};
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", kContainers, 0);
    // On failure the context is freed and the pointer null.
    int result = avformat_open_input(&demuxer, "", nullptr, &options);
    av_dict_free(&options);
    mDemuxer.reset(demuxer);
    if (result >= 0) {
        result = avformat_find_stream_info(mDemuxer.get(), nullptr);
    }
    stop.throwIfRaised();
    mFile->throwIfUnsound();
    if (result < 0) {
        throw Failure(ErrorCode::NotARecording,
                      text("Source \"", path, "\" is no recording: ", ffmpegErrorText(result)));
    }
    const auto streams = std::span(mDemuxer->streams, mDemuxer->nb_streams);
    if (std::ranges::none_of(streams, [this](const AVStream* each) { return isWanted(*each); })) {
        throw Failure(ErrorCode::NothingToConvert,
                      text("Source \"", path, "\" has neither sound nor picture"));
    }
}

bool Source::isWanted(const AVStream& stream) const {
    const AVCodecParameters& parameters = *stream.codecpar;
    if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
        return parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0;
    }
    return isPicture(stream) && parameters.width > 0 && parameters.height > 0;
}

void Source::throwIfNeeded(std::size_t index) const {
    const AVStream& stream = *mDemuxer->streams[index];
    if (isPicture(stream) || stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
        throw Failure(ErrorCode::SourceDamaged, text("Stream ", index, " of \"", path(),
                                                     "\" begins so late that it was not "
                                                     "recognised"));
    }
}

void Source::discardUnwanted() {
    for (AVStream* each : std::span(mDemuxer->streams, mDemuxer->nb_streams)) {
        if (isWanted(*each)) {
            continue;
        }
        if (!isPicture(*each) && each->codecpar->codec_type != AVMEDIA_TYPE_AUDIO) {
            each->discard = AVDISCARD_ALL;
        }
        const char* kind = av_get_media_type_string(each->codecpar->codec_type);
        trace(TraceLevel::Warning, text("Stream ", each->index, " of \"", path(),
                                        "\" is left out: ", kind == nullptr ? "unknown" : kind,
                                        " (", avcodec_get_name(each->codecpar->codec_id), ")"));
    }
}

Ticks Source::start() const {
    Ticks earliest = kNoTime;
    for (const AVStream* each : std::span(mDemuxer->streams, mDemuxer->nb_streams)) {
        if (isWanted(*each) && each->start_time != kNoTime) {
            const Ticks begin = toTicks(each->start_time, each->time_base);
            earliest = earliest == kNoTime ? begin : std::min(earliest, begin);
        }
    }
    return earliest == kNoTime ? 0 : earliest;
}

Ticks Source::duration() const {
    return mDemuxer->duration == kNoTime || mDemuxer->duration < 0
               ? 0
               : toTicks(mDemuxer->duration, av_make_q(1, AV_TIME_BASE));
}

bool Source::read(AVPacket& packet) {
    const int result = av_read_frame(mDemuxer.get(), &packet);
    if (result >= 0) {
        return true;
    }
    if (result != AVERROR_EXIT) {
        mFile->throwIfUnsound();
    }
    if (result != AVERROR_EOF && result != AVERROR_EXIT) {
        throw Failure(ErrorCode::SourceDamaged,
                      text("Source \"", path(), "\" is damaged: ", ffmpegErrorText(result)));
    }
    return false;
}

} // namespace zelcore
