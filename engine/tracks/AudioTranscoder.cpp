#include "engine/tracks/AudioTranscoder.h"

#include "engine/support/Trace.h"
#include "engine/tracks/SoundLayout.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zelcore {

namespace {

constexpr std::int64_t kBitsPerChannel = 80'000;
// What sound may be off its time: more is filled or cut, less is the unrest of recorders' clocks,
// out of which a drift is told by the mean and made good by playing a little faster or slower.
constexpr int kMostOffMilliseconds = 40;
constexpr int kDriftMilliseconds = 5;
constexpr double kWeightOfOne = 1.0 / 16; ///< of one deviation in the mean
constexpr int kSecondsToMakeGood = 2;
// A longer silence is left to the times of the packets around it, as where sound is copied.
constexpr std::int64_t kLongestSilenceInSeconds = 60;
constexpr std::int64_t kLongestLeapInSeconds = 3600;
constexpr int kSilencePiece = 8192;

int bestRate(const AVCodec& codec, int wanted) {
    if (codec.supported_samplerates == nullptr) {
        return wanted;
    }
    int best = codec.supported_samplerates[0];
    for (const int* rate = codec.supported_samplerates; *rate != 0; ++rate) {
        if (std::abs(*rate - wanted) < std::abs(best - wanted)) {
            best = *rate;
        }
    }
    return best;
}

/// Of all parts the one with the highest number of what is asked for.
template <class Number>
const AVCodecParameters& bestPart(const TrackPlan& plan, Number number) {
    return *std::ranges::max_element(plan.streams, {}, [number](const PartStream& each) {
                return number(*each.stream->codecpar);
            })->stream->codecpar;
}

const AVChannelLayout& widestLayout(const TrackPlan& plan) {
    return bestPart(plan, [](const auto& each) { return each.ch_layout.nb_channels; }).ch_layout;
}

int highestRate(const TrackPlan& plan) {
    return bestPart(plan, [](const auto& each) { return each.sample_rate; }).sample_rate;
}

CodecPtr configuredEncoder(const TrackPlan& plan) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (codec == nullptr) {
        throw Failure(ErrorCode::UnsupportedCodec, "No encoder for sound is present");
    }
    const AVCodecParameters& from = *plan.reference->codecpar;
    if (from.sample_rate <= 0 || from.ch_layout.nb_channels <= 0) {
        throw Failure(ErrorCode::SourceDamaged,
                      "An audio stream does not say its sample rate and channels");
    }
    auto encoder = owned<CodecPtr>(avcodec_alloc_context3(codec));
    encoder->ch_layout = aacLayout(knownLayout(widestLayout(plan)));
    encoder->sample_fmt = codec->sample_fmts[0];
    encoder->sample_rate = bestRate(*codec, highestRate(plan));
    encoder->bit_rate = kBitsPerChannel * encoder->ch_layout.nb_channels;
    encoder->time_base = av_make_q(1, encoder->sample_rate);
    trace(TraceLevel::Info,
          text("Sound is encoded by ", codec->name, ", ", encoder->sample_rate, " Hz, ",
               encoder->ch_layout.nb_channels, " channels: ", plan.reason));
    return encoder;
}

} // namespace

AudioTranscoder::AudioTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses)
    : mLosses(losses),
      mEncoder(configuredEncoder(plan), muxer),
      mQueue(owned<SampleFifoPtr>(av_audio_fifo_alloc(mEncoder.codec().sample_fmt,
                                                      mEncoder.codec().ch_layout.nb_channels,
                                                      mEncoder.codec().sample_rate))) {
    copyTrackProperties(*plan.reference, mEncoder.addTrack());
}

void AudioTranscoder::beginPart(const AVStream& stream) {
    mDecoder.emplace(stream, mLosses);
}

void AudioTranscoder::accept(AVPacket& packet) {
    mDecoder->decode(&packet, [this](const AVFrame& sound) { take(sound); });
}

void AudioTranscoder::endPart() {
    mDecoder->decode(nullptr, [this](const AVFrame& sound) { take(sound); });
    mDecoder->settle();
    mDecoder.reset();
    if (mResampler != nullptr) {
        resample(nullptr);
        mResampler.reset();
        encodeQueued(false);
    }
}

void AudioTranscoder::finish() {
    encodeQueued(true);
    mEncoder.drain();
}

void AudioTranscoder::take(const AVFrame& sound) {
    if (!isOfFormat(sound)) {
        beginFormat(sound);
    }
    const AVRational samples = mEncoder.codec().time_base;
    if (sound.best_effort_timestamp != kNoTime) {
        // The resampler's own delay lies between the queue's end and this frame.
        bridgeTo(av_rescale_q(sound.best_effort_timestamp, kTicks, samples) -
                 swr_get_delay(mResampler.get(), samples.den));
    } else if (mQueueEnd == kNoTime) {
        mQueueEnd = 0;
    }
    resample(&sound);
    encodeQueued(false);
}

void AudioTranscoder::beginFormat(const AVFrame& sound) {
    if (mResampler != nullptr) {
        resample(nullptr); // the source changed its format on the way
    }
    mResampler = openResampler(sound, mEncoder.codec());
    mFollowsDrift = false;
    mFormat = makeFrame();
    mFormat->format = sound.format;
    mFormat->sample_rate = sound.sample_rate;
    require(av_channel_layout_copy(&mFormat->ch_layout, &sound.ch_layout), "channel layout");
}

bool AudioTranscoder::isOfFormat(const AVFrame& sound) const {
    return mResampler != nullptr && sound.format == mFormat->format &&
           sound.sample_rate == mFormat->sample_rate &&
           av_channel_layout_compare(&sound.ch_layout, &mFormat->ch_layout) == 0;
}

void AudioTranscoder::bridgeTo(std::int64_t time) {
    if (mQueueEnd == kNoTime) {
        mQueueEnd = time;
        return;
    }
    const int rate = mEncoder.codec().sample_rate;
    std::int64_t gap = addTimes(time, -mQueueEnd);
    if (std::abs(gap) <= rate * kMostOffMilliseconds / 1000) {
        followDrift(static_cast<double>(gap));
        return;
    }
    mMeanGap = 0;
    trace(TraceLevel::Debug, text("Sound jumps by ", static_cast<double>(gap) / rate, " s"));
    if (gap < 0) {
        mToSkip = static_cast<int>(std::min<std::int64_t>(-gap, INT32_MAX));
        return;
    }
    if (gap / rate < kLongestSilenceInSeconds) {
        queueSilence(gap);
        return;
    }
    // One whole frame more, because a frame is heard to its end only with the next; and some on the
    // way, because MP4 holds no pause of a day.
    const int whole = frameSize();
    const std::int64_t longest = rate * kLongestLeapInSeconds;
    while (mQueueEnd < time) {
        queueSilence(2 * whole - av_audio_fifo_size(mQueue.get()) % whole);
        mQueueEnd = std::max(mQueueEnd, std::min(time, mQueueEnd + longest));
    }
}

void AudioTranscoder::queueSilence(std::int64_t samples) {
    const FramePtr silence = soundFrame(kSilencePiece);
    av_samples_set_silence(silence->extended_data, 0, kSilencePiece, silence->ch_layout.nb_channels,
                           mEncoder.codec().sample_fmt);
    for (; samples > 0; samples -= silence->nb_samples) {
        silence->nb_samples = static_cast<int>(std::min<std::int64_t>(samples, kSilencePiece));
        queue(*silence, 0);
        encodeQueued(false);
    }
}

int AudioTranscoder::frameSize() const {
    return mEncoder.codec().frame_size > 0 ? mEncoder.codec().frame_size : 1024;
}

void AudioTranscoder::followDrift(double gap) {
    mMeanGap += (gap - mMeanGap) * kWeightOfOne;
    const int rate = mEncoder.codec().sample_rate;
    const int most = rate * kDriftMilliseconds / 1000;
    if (std::abs(mMeanGap) > most || mFollowsDrift) {
        mFollowsDrift = std::abs(mMeanGap) > most / 4.0;
        require(
            swr_set_compensation(mResampler.get(), mFollowsDrift ? static_cast<int>(mMeanGap) : 0,
                                 kSecondsToMakeGood * rate),
            "resampler");
    }
}

void AudioTranscoder::resample(const AVFrame* sound) {
    const int most =
        swr_get_out_samples(mResampler.get(), sound == nullptr ? 0 : sound->nb_samples);
    require(most, "resampler");
    if (most == 0) {
        return;
    }
    const FramePtr samples = soundFrame(most);
    auto** data =
        sound == nullptr ? nullptr : const_cast<const std::uint8_t**>(sound->extended_data);
    const int got = swr_convert(mResampler.get(), samples->extended_data, most, data,
                                sound == nullptr ? 0 : sound->nb_samples);
    require(got, "resampler");
    samples->nb_samples = got;
    const int skip = std::min(got, mToSkip);
    mToSkip -= skip;
    queue(*samples, skip);
}

void AudioTranscoder::queue(const AVFrame& samples, int skip) {
    const int count = samples.nb_samples - skip;
    if (count <= 0) {
        return;
    }
    const AVCodecContext& to = mEncoder.codec();
    const bool isPlanar = av_sample_fmt_is_planar(to.sample_fmt) != 0;
    const std::ptrdiff_t step = static_cast<std::ptrdiff_t>(skip) *
                                av_get_bytes_per_sample(to.sample_fmt) *
                                (isPlanar ? 1 : to.ch_layout.nb_channels);
    std::array<void*, AV_NUM_DATA_POINTERS> planes{};
    for (int i = 0; i < (isPlanar ? to.ch_layout.nb_channels : 1); ++i) {
        planes[static_cast<std::size_t>(i)] = samples.extended_data[i] + step;
    }
    require(av_audio_fifo_write(mQueue.get(), planes.data(), count), "sound queue");
    mQueueEnd += count;
}

void AudioTranscoder::encodeQueued(bool isEnd) {
    const int whole = frameSize();
    for (int queued = av_audio_fifo_size(mQueue.get()); queued >= whole || (isEnd && queued > 0);
         queued = av_audio_fifo_size(mQueue.get())) {
        const FramePtr sound = soundFrame(std::min(queued, whole));
        sound->pts = mQueueEnd - queued;
        require(av_audio_fifo_read(mQueue.get(), reinterpret_cast<void**>(sound->extended_data),
                                   sound->nb_samples),
                "sound queue");
        mEncoder.encode(*sound, sound->nb_samples);
    }
}

FramePtr AudioTranscoder::soundFrame(int samples) const {
    FramePtr frame = makeFrame();
    frame->nb_samples = samples;
    frame->format = mEncoder.codec().sample_fmt;
    frame->sample_rate = mEncoder.codec().sample_rate;
    require(av_channel_layout_copy(&frame->ch_layout, &mEncoder.codec().ch_layout),
            "channel layout");
    require(av_frame_get_buffer(frame.get(), 0), "sound buffer");
    return frame;
}

} // namespace zelcore
