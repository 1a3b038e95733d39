#pragma once

#include "engine/support/AvHandles.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zelcore {

enum class LossCause {
    Damaged,  ///< there, but it cannot be decoded or the container is broken at this place
    CutShort, ///< the file ends before it
    Unusable, ///< whole, but it has no place in the destination
};

/// Content of the sources that is not in the destination.
struct Loss {
    AVMediaType kind = AVMEDIA_TYPE_UNKNOWN;
    LossCause cause = LossCause::Damaged;
    Ticks begin = 0;         ///< on the destination's clock
    Ticks duration = 0;      ///< 0 when nothing says
    std::int64_t pieces = 0; ///< pictures of a video track, samples of sound, 0 when nothing says
};

/// What a conversion lost, in the order of its finding. For the job's thread alone.
class Losses {
public:
    /// Joined with an earlier loss of the same kind and cause when they are about a second apart.
    void add(const Loss& loss);
    bool isEmpty() const { return mAll.empty(); }
    const std::vector<Loss>& all() const { return mAll; }
    /// What is missing and where, for a person: no full stop, empty when nothing is.
    std::string sentence() const;

private:
    std::vector<Loss> mAll;
};

/// What ZelConversionLosses hands over: the caller's word, and the sentence of the conversion that
/// ended last. Any thread.
void acceptLosses(bool accepted);
bool areLossesAccepted();
void keepLossSentence(const std::string& sentence);
std::string lastLossSentence();

} // namespace zelcore
