#include "engine/tracks/StreamCopier.h"

#include "engine/support/Trace.h"

#include <algorithm>

namespace zelcore {

StreamCopier::StreamCopier(const TrackPlan& plan, Muxer& muxer)
    : mMuxer(muxer), mTrack(muxer.written().size()) {
    const AVStream& from = *plan.reference;
    AVStream& to = muxer.addTrack(*from.codecpar, from.time_base);
    to.avg_frame_rate = from.avg_frame_rate;
    to.sample_aspect_ratio = from.sample_aspect_ratio;
    for (int i = 0; i < from.nb_side_data; ++i) {
        const AVPacketSideData& data = from.side_data[i];
        std::uint8_t* copy = av_stream_new_side_data(&to, data.type, data.size);
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        std::copy_n(data.data, data.size, copy);
    }
    require(av_dict_copy(&to.metadata, from.metadata, 0), "track metadata");
    to.disposition = from.disposition;
}

void StreamCopier::beginPart(const AVStream& stream) {
    // What comes before the first key frame of a recording that was joined late shows nothing.
    mAwaitsKeyFrame = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    mDelay = static_cast<std::size_t>(std::max(stream.codecpar->video_delay, 0));
}

void StreamCopier::accept(AVPacket& packet) {
    if (mAwaitsKeyFrame) {
        if ((packet.flags & AV_PKT_FLAG_KEY) == 0) {
            trace(TraceLevel::Debug, text("Track ", mTrack,
                                          ": a packet before the first key "
                                          "frame is left out"));
            return;
        }
        mAwaitsKeyFrame = false;
    }
    if (packet.dts == kNoTime && packet.pts != kNoTime) {
        // Pictures are decoded in the order of their packets and shown in that of their times. So
        // a packet is decoded when the picture is shown that is as many before it as may wait.
        mShown.insert(packet.pts);
        if (mShown.size() <= mDelay) {
            mHeld.push_back(makePacket());
            av_packet_move_ref(mHeld.back().get(), &packet);
            return;
        }
        packet.dts = std::min(*mShown.begin(), packet.pts);
        mShown.erase(mShown.begin());
    }
    writeHeld(packet.dts);
    mMuxer.write(mTrack, packet, kTicks);
}

void StreamCopier::endPart() {
    if (!mHeld.empty()) {
        writeHeld(*mShown.begin());
    }
    mShown.clear();
}

void StreamCopier::writeHeld(std::int64_t next) {
    for (auto held = mHeld.rbegin(); held != mHeld.rend(); ++held) {
        next = addTimes(next, -std::max<std::int64_t>((*held)->duration, 1));
        (*held)->dts = std::min(next, (*held)->pts);
    }
    for (const PacketPtr& held : mHeld) {
        mMuxer.write(mTrack, *held, kTicks);
    }
    mHeld.clear();
}

} // namespace zelcore
