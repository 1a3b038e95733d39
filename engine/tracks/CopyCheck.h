#pragma once

#include "engine/tracks/Decoder.h"
#include "engine/tracks/PacketShape.h"

#include <optional>
#include <vector>

namespace zelcore {

/// Looks at the packets of a stream that is copied. To decode all of them would take many times as
/// long as copying: decoded are those that look wrong, with what they need, and a few here and
/// there. Damage is counted; nothing is changed.
class CopyCheck {
public:
    /// `stream` outlives this object; `offset` takes its clock to the destination's.
    CopyCheck(const AVStream& stream, Ticks offset, Losses& losses);

    /// False for a packet that no destination takes.
    bool look(const AVPacket& packet, bool isSuspect);
    void end();
    /// As far as it was decoded.
    bool hasDecodedNothing() const { return mDecoded > 0 && mFrames == 0; }

private:
    bool beginsGroup(const AVPacket& packet) const;
    void beginGroup();
    void hold(const AVPacket& packet);
    void decodeHeld();
    void endGroup();
    void addUndecoded(const AVPacket& packet);

    const AVStream& mStream;
    const Ticks mOffset;
    Losses& mLosses;
    const PacketShape mShape;
    std::optional<Decoder> mDecoder; ///< of this group
    std::vector<PacketPtr> mHeld;    ///< of this group, not decoded so far
    std::size_t mHeldBytes = 0;
    bool mIsInGroup = false;  ///< there is a packet that decoding can begin with
    std::size_t mOfGroup = 0; ///< packets of this group
    bool mIsDamagedAllOver = false;
    std::int64_t mGroups = 0;
    std::int64_t mNextSample = 0; ///< the group that a sample is taken of
    std::int64_t mDecoded = 0;
    std::int64_t mFrames = 0;
};

} // namespace zelcore
