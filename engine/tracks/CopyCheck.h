#pragma once

#include "engine/tracks/Decoder.h"
#include "engine/tracks/PacketShape.h"

#include <optional>
#include <vector>

namespace zelcore {

/// Thrown where earlier packets have to be decoded that were not kept: the conversion starts over
/// and keeps them.
struct GroupNotKept {};

/// Looks at the packets of a stream that is copied. To decode all of them would take many times as
/// long as copying: decoded are those that look wrong, with what they need, and a few here and
/// there. Damage is counted; nothing is changed.
class CopyCheck {
public:
    /// `stream` outlives this object; `offset` takes its clock to the destination's. To keep each
    /// packet until its group has ended costs a fifth of the time that copying takes.
    CopyCheck(const AVStream& stream, Ticks offset, bool keepsGroups, Losses& losses);

    /// False for a packet that no destination takes. May throw GroupNotKept.
    bool look(const AVPacket& packet, bool isSuspect);
    void end();
    /// As far as it was decoded.
    bool hasDecodedNothing() const { return mDecoded > 0 && mFrames == 0; }

private:
    bool beginsGroup(const AVPacket& packet) const;
    void beginGroup();
    void hold(const AVPacket& packet);
    void decodeWithHeld(const AVPacket& packet);
    void decode(const AVPacket& packet);
    void endGroup();
    void addUndecoded(const AVPacket& packet);

    const AVStream& mStream;
    const Ticks mOffset;
    const bool mKeepsGroups;
    Losses& mLosses;
    const PacketShape mShape;
    std::optional<Decoder> mDecoder; ///< of this group
    std::vector<PacketPtr> mHeld;    ///< what is not decoded so far, where groups are kept
    std::size_t mUndecoded = 0;      ///< packets of this group so far
    std::size_t mUndecodedBytes = 0;
    bool mIsInGroup = false;  ///< there is a packet that decoding can begin with
    std::size_t mOfGroup = 0; ///< packets of this group
    bool mIsDamagedAllOver = false;
    std::int64_t mGroups = 0;
    std::int64_t mNextSample = 0; ///< the group that a sample is taken of
    std::int64_t mDecoded = 0;
    std::int64_t mFrames = 0;
};

} // namespace zelcore
