#pragma once

#include "engine/tracks/Decoder.h"
#include "engine/tracks/Encoder.h"
#include "engine/tracks/Track.h"

#include <optional>

namespace zelcore {

/// Decodes sound and encodes it as AAC. Time is counted in samples; a gap in the source becomes
/// silence and an overlap is cut, so that sound and picture stay together.
class AudioTranscoder : public Track {
public:
    AudioTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses);

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override;

private:
    void take(const AVFrame& sound);
    /// Resamples a frame, or null for what the resampler still holds, into the queue.
    void resample(const AVFrame* sound);
    /// Opens the resampler for sound in the format of this frame.
    void beginFormat(const AVFrame& sound);
    bool isOfFormat(const AVFrame& sound) const;
    /// Moves the queue's end to `time`, in samples.
    void bridgeTo(std::int64_t time);
    /// `gap` is how many samples the next frame is late, negative when it is early.
    void followDrift(double gap);
    void queueSilence(std::int64_t samples);
    void queue(const AVFrame& samples, int skip);
    /// Encodes whole frames; at the end also a last, shorter one.
    void encodeQueued(bool isEnd);
    FramePtr soundFrame(int samples) const;
    int frameSize() const;

    Losses& mLosses;
    Encoder mEncoder;
    SampleFifoPtr mQueue;
    ResamplerPtr mResampler;
    FramePtr mFormat; ///< what the resampler takes; it has no samples
    std::optional<Decoder> mDecoder;
    std::int64_t mQueueEnd = kNoTime; ///< time of the sample that comes next into the queue
    double mMeanGap = 0;              ///< of late
    bool mFollowsDrift = false;
    int mToSkip = 0; ///< samples of an overlap that are still to be cut
};

} // namespace zelcore
