#pragma once

#include "engine/files/DestinationFile.h"
#include "engine/media/WrittenTrack.h"
#include "engine/support/StopFlag.h"

#include <vector>

namespace zelcore {

/// Opens a finished destination anew, by its temporary name, and compares all of it with what was
/// written: the bytes of every packet where the index has it, every time, decoder data, and the
/// bytes around the packets. Decodes here and there what an encoder of ours made. Throws
/// VerificationFailed.
void verify(const DestinationFile& destination, const WrittenFile& written, const StopFlag& stop);

} // namespace zelcore
