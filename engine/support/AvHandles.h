#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/channel_layout.h>
#include <libavutil/common.h>
#include <libavutil/cpu.h>
#include <libavutil/imgutils.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>
#include <type_traits>

namespace zelcore {

template <auto freeThroughPointer>
struct AvFree {
    template <class T>
    void operator()(T* object) const {
        freeThroughPointer(&object);
    }
};
template <auto freeObject>
struct AvFreeObject {
    template <class T>
    void operator()(T* object) const {
        freeObject(object);
    }
};
struct AvioFree {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

using PacketPtr = std::unique_ptr<AVPacket, AvFree<av_packet_free>>;
using FramePtr = std::unique_ptr<AVFrame, AvFree<av_frame_free>>;
using CodecPtr = std::unique_ptr<AVCodecContext, AvFree<avcodec_free_context>>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, AvFree<avcodec_parameters_free>>;
/// Never close these through FFmpeg's own I/O: their AVIOContext belongs to an AvioPtr.
using DemuxerPtr = std::unique_ptr<AVFormatContext, AvFree<avformat_close_input>>;
using MuxerPtr = std::unique_ptr<AVFormatContext, AvFreeObject<avformat_free_context>>;
using AvioPtr = std::unique_ptr<AVIOContext, AvioFree>;
using ScalerPtr = std::unique_ptr<SwsContext, AvFreeObject<sws_freeContext>>;
using ResamplerPtr = std::unique_ptr<SwrContext, AvFree<swr_free>>;
using SampleFifoPtr = std::unique_ptr<AVAudioFifo, AvFreeObject<av_audio_fifo_free>>;
using FilterPtr = std::unique_ptr<AVBSFContext, AvFree<av_bsf_free>>;

template <class Handle>
inline constexpr bool kOwnsAlone =
    sizeof(Handle) == sizeof(void*) &&
    std::is_nothrow_move_constructible_v<Handle>&& std::is_nothrow_move_assignable_v<Handle> &&
    !std::is_copy_constructible_v<Handle>;
static_assert(kOwnsAlone<PacketPtr> && kOwnsAlone<FramePtr> && kOwnsAlone<CodecPtr> &&
              kOwnsAlone<ParametersPtr> && kOwnsAlone<DemuxerPtr> && kOwnsAlone<MuxerPtr> &&
              kOwnsAlone<AvioPtr> && kOwnsAlone<ScalerPtr> && kOwnsAlone<ResamplerPtr> &&
              kOwnsAlone<SampleFifoPtr>);

/// Wraps what an FFmpeg allocator returned; throws when that is null.
template <class Handle>
Handle owned(typename Handle::pointer object) {
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return Handle(object);
}

inline PacketPtr makePacket() {
    return owned<PacketPtr>(av_packet_alloc());
}
inline FramePtr makeFrame() {
    return owned<FramePtr>(av_frame_alloc());
}

/// FFmpeg's "no time stamp", without its C cast.
inline constexpr std::int64_t kNoTime = INT64_MIN;
static_assert(kNoTime == AV_NOPTS_VALUE);

/// The clock on which parts are laid end to end: every usual sample rate, frame rate and container
/// clock divides it, so that a join adds no rounding of its own. 2^63 of them are 400 years.
inline constexpr AVRational kTicks{1, 705'600'000};
using Ticks = std::int64_t;

inline Ticks toTicks(std::int64_t time, AVRational base) {
    return av_rescale_q(time, base, kTicks);
}
/// Times come from files, and a file may say anything: a sum beyond the range stays at its end.
inline std::int64_t addTimes(std::int64_t left, std::int64_t right) {
    return av_sat_add64(left, right);
}
inline double toSeconds(Ticks ticks) {
    return static_cast<double>(ticks) * av_q2d(kTicks);
}

} // namespace zelcore
