#pragma once

#include "engine/media/WrittenTrack.h"
#include "engine/platform/OsFile.h"
#include "engine/support/StopFlag.h"

#include <cstdint>
#include <vector>

namespace zelcore {

/// Decodes a picture or a sound at the beginning, in the middle and at the end of each track that
/// an encoder of ours made. Throws VerificationFailed when one does not decode or has another
/// shape.
void decodeHereAndThere(const OsFile& file, std::uint64_t size,
                        const std::vector<WrittenTrack>& written, const StopFlag& stop);

} // namespace zelcore
