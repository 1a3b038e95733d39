#include "engine/media/Source.h"
#include "engine/tracks/TrackPlan.h"
#include "fuzz/MemoryFile.h"

#include <cmath>

// A hundred packets are what a recording's opening and first clusters hold; past them a demuxer
// does the same again.
constexpr int kMostPackets = 100;

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file(data, size);
    const zelcore::StopFlag stop;
    try {
        zelcore::Sources sources;
        sources.push_back(std::make_unique<zelcore::Source>(file.path(), stop));
        zelcore::Source& source = *sources.back();
        source.start();
        source.duration();
        zelcore::planTracks(sources);
        const zelcore::PacketPtr packet = zelcore::makePacket();
        for (int count = 0; count < kMostPackets && source.read(*packet); ++count) {
            av_packet_unref(packet.get());
        }
    } catch (const zelcore::Failure&) { // NOLINT(bugprone-empty-catch): what most inputs deserve
    }
    return 0;
}
