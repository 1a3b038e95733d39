#include "engine/verify/Verifier.h"

#include "engine/files/FinishedFileFault.h"
#include "engine/support/Trace.h"
#include "engine/verify/DecodingCheck.h"
#include "engine/verify/IndexCheck.h"

#include <algorithm>
#include <array>

namespace zelcore {

namespace {

/// Calls `use` with each piece of a range of the file.
template <class Use>
void readAll(const OsFile& file, std::uint64_t begin, std::uint64_t end, const StopFlag& stop,
             Use use) {
    std::vector<std::uint8_t> buffer(64 * 1024);
    while (begin < end) {
        stop.throwIfRaised();
        int error = 0;
        const std::int64_t got = file.readAt(
            begin, buffer.data(), std::min<std::size_t>(buffer.size(), end - begin), error);
        if (got <= 0) {
            throwFinishedFileFault(got < 0 ? "cannot be read: " + systemErrorText(error)
                                           : "is cut short");
        }
        use(std::span(buffer).first(static_cast<std::size_t>(got)));
        begin += static_cast<std::uint64_t>(got);
    }
}

/// What lies before the first packet and behind the last one.
void compareFrame(const OsFile& file, const FrameDigest& frame, std::uint64_t firstPacket,
                  std::uint64_t size, const StopFlag& stop) {
    const std::vector<std::uint8_t> headBytes = frame.head();
    const auto head = std::span(headBytes);
    if (!frame.isCertain() || firstPacket > head.size()) {
        throwFinishedFileFault("was not written as expected");
    }
    const auto compare = [&](std::uint64_t begin, std::span<const std::uint8_t> wanted) {
        std::size_t at = 0;
        readAll(file, begin, begin + wanted.size(), stop, [&](std::span<const std::uint8_t> bytes) {
            if (!std::ranges::equal(bytes, wanted.subspan(at, bytes.size()))) {
                throwFinishedFileFault("has another head or index than was written");
            }
            at += bytes.size();
        });
    };
    compare(0, head.first(static_cast<std::size_t>(firstPacket)));
    compare(frame.indexBegin(), frame.index());
    if (frame.indexBegin() + frame.index().size() != size) {
        throwFinishedFileFault("was not written as expected");
    }
}

} // namespace

void verify(const DestinationFile& destination, const WrittenFile& written, const StopFlag& stop) {
    const std::uint64_t size = destination.size();
    const FrameDigest& frame = destination.frame();
    OsFile file;
    FileState state;
    if (const int error = OsFile::openForReading(destination.temporaryPath(), file);
        error != 0 || file.state(state) != 0) {
        throwFinishedFileFault("cannot be opened: " + systemErrorText(error));
    }
    if (state.size != size) {
        throwFinishedFileFault(text("has ", state.size, " bytes instead of ", size));
    }
    IndexCheck index(file, size, written, stop);
    std::vector<StoredSample> samples = index.samples(frame.indexBegin());
    const std::uint64_t firstPacket = samples.front().position;
    // What was read back before counts while nobody has touched the file since.
    const bool isUntouched = state == destination.closedState() && written.readBehind != nullptr;
    const std::size_t readBefore = isUntouched ? written.readBehind->countOf(samples) : 0;
    trace(TraceLevel::Debug,
          text(readBefore, " of ", samples.size(), " packets were read back while writing"));
    PacketCheck packets(destination.temporaryPath(), file, std::move(samples), readBefore, stop);
    compareFrame(file, frame, firstPacket, size, stop);
    index.compareTimes();
    packets.finish();
    decodeHereAndThere(file, size, written.tracks, stop);
    if (FileState now; file.state(now) != 0 || now != state) {
        throwFinishedFileFault("changed while it was compared");
    }
}

} // namespace zelcore
