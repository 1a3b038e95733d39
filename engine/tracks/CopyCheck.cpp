#include "engine/tracks/CopyCheck.h"

namespace zelcore {

namespace {

/// Packets of a group that are decoded for a sample.
constexpr std::size_t kSample = 4;
/// Sound can be decoded from every packet on.
constexpr std::size_t kGroupOfSound = 64;
/// A group that is longer is not decoded.
constexpr std::size_t kMostUndecoded = 2000;
constexpr std::size_t kMostUndecodedBytes = 32U << 20U;
/// The first groups are all sampled; later the gaps grow by half each time.
constexpr std::int64_t kDense = 2;

} // namespace

CopyCheck::CopyCheck(const AVStream& stream, Ticks offset, bool keepsGroups, Losses& losses)
    : mStream(stream),
      mOffset(offset),
      mKeepsGroups(keepsGroups),
      mLosses(losses),
      mShape(*stream.codecpar) {
}

bool CopyCheck::look(const AVPacket& packet, bool isSuspect) {
    if (mShape.isUnusable(packet)) {
        addUndecoded(packet);
        return false;
    }
    if (beginsGroup(packet)) {
        endGroup();
        beginGroup();
    }
    const bool looksWrong = mShape.looksWrong(packet);
    if (!mIsInGroup) {
        if (looksWrong) {
            addUndecoded(packet);
        }
        return true;
    }
    mOfGroup++;
    const bool isSampled = mGroups - 1 == mNextSample && mOfGroup <= kSample;
    if (isSuspect || isSampled || mIsDamagedAllOver || looksWrong) {
        decodeWithHeld(packet);
    } else {
        hold(packet);
    }
    return true;
}

void CopyCheck::hold(const AVPacket& packet) {
    if (mKeepsGroups) {
        mHeld.push_back(owned<PacketPtr>(av_packet_clone(&packet)));
    }
    mUndecoded++;
    mUndecodedBytes += static_cast<std::size_t>(packet.size);
    if (mUndecoded > kMostUndecoded || mUndecodedBytes > kMostUndecodedBytes) {
        endGroup();
    }
}

void CopyCheck::addUndecoded(const AVPacket& packet) {
    const std::int64_t time = packet.pts == kNoTime ? packet.dts : packet.pts;
    Loss loss;
    loss.kind = mStream.codecpar->codec_type;
    loss.begin = addTimes(toTicks(time == kNoTime ? 0 : time, mStream.time_base), mOffset);
    loss.duration = toTicks(packet.duration, mStream.time_base);
    loss.pieces = loss.kind == AVMEDIA_TYPE_VIDEO ? 1 : 0;
    mLosses.add(loss);
}

bool CopyCheck::beginsGroup(const AVPacket& packet) const {
    if (mStream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
        return !mIsInGroup || mOfGroup >= kGroupOfSound;
    }
    return mShape.isStart(packet);
}

void CopyCheck::beginGroup() {
    if (mGroups > mNextSample) {
        mNextSample = mGroups + mGroups / kDense;
    }
    mGroups++;
    mIsInGroup = true;
}

void CopyCheck::decodeWithHeld(const AVPacket& packet) {
    if (mUndecoded > mHeld.size()) {
        throw GroupNotKept{};
    }
    if (!mDecoder) {
        const Decoder::Clock clock{mStream.time_base, mOffset};
        mDecoder.emplace(mStream, mLosses, clock, Decoder::Purpose::Check);
    }
    for (const PacketPtr& held : mHeld) {
        decode(*held);
    }
    decode(packet);
    mHeld.clear();
    mUndecoded = mUndecodedBytes = 0;
    mIsDamagedAllOver = mIsDamagedAllOver || mDecoder->hasFoundDamage();
}

void CopyCheck::decode(const AVPacket& packet) {
    mDecoder->decode(&packet, [this](const AVFrame&) { mFrames++; });
    mDecoded++;
}

void CopyCheck::endGroup() {
    if (mDecoder) {
        mDecoder->decode(nullptr, [this](const AVFrame&) { mFrames++; });
        mDecoder->settle();
        mIsDamagedAllOver = mDecoder->hasFoundDamage();
        mDecoder.reset();
    }
    mHeld.clear();
    mUndecoded = mUndecodedBytes = 0;
    mOfGroup = 0;
    mIsInGroup = false;
}

void CopyCheck::end() {
    endGroup();
}

} // namespace zelcore
