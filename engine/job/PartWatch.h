#pragma once

#include "engine/media/Source.h"
#include "engine/support/Losses.h"
#include "engine/tracks/CopyCheck.h"
#include "engine/tracks/TrackPlan.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zelcore {

/// Thrown when a track that was to be copied cannot be: the conversion starts over and transcodes
/// it.
struct NotCopyable {
    std::size_t track;
    std::string reason;
};

/// Looks at every packet of a part before its track gets it, and counts what does not arrive there.
class PartWatch {
public:
    /// `offset` takes the part's clock to the destination's.
    PartWatch(const Source& source, const std::vector<TrackPlan>& plans, std::size_t part,
              Ticks offset, Losses& losses);

    /// True when the packet is for its track; one that tells no time gets one where it needs it.
    /// Throws NotCopyable, GroupNotKept, and Failure for what is encrypted.
    bool look(AVPacket& packet);
    /// After the part's last packet.
    void end();

private:
    struct Stream {
        const AVStream* stream = nullptr;
        std::size_t track = 0;
        Ticks end = kNoTime;   ///< of its packets so far, on the part's clock
        int inDoubt = 0;       ///< packets to come that may show a gap
        bool hasShown = false; ///< a packet that is not to be discarded
        bool hasKey = false;   ///< a packet that a player can begin with
        std::unique_ptr<PacketShape> shape{};
        std::unique_ptr<CopyCheck> check{};
    };

    bool lookAtPlanned(Stream& stream, AVPacket& packet);
    void refuseToCopyWhatChanges(Stream& stream, const AVPacket& packet) const;
    void noteUnplanned(const AVPacket& packet);
    /// A place that was found broken lies between the packet before and this one.
    bool passesBrokenPlace(const AVPacket& packet);
    void addGap(const Stream& stream, Ticks begin, Ticks step);
    void addMissingEnd();
    Ticks estimatedMissing() const;
    void add(AVMediaType kind, LossCause cause, Ticks begin, Ticks duration, std::int64_t pieces);

    const Source& mSource;
    const Ticks mOffset;
    Losses& mLosses;
    std::vector<Stream> mStreams; ///< by the source's index; those without a track have no stream
    std::set<std::size_t> mTexts; ///< subtitles, by the source's index
    std::size_t mPassed = 0;      ///< broken places
    std::optional<Ticks> mUntold; ///< when the first of them was passed that no gap tells of
    Ticks mEnd = 0;               ///< of all packets so far, on the part's clock
};

} // namespace zelcore
