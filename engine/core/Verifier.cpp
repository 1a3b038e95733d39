#include "engine/core/Verifier.h"

#include "engine/core/SourceFile.h"
#include "engine/core/Trace.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace zelcore {

namespace {

constexpr double kToleratedSeconds = 0.1;

template <class Value>
void expect(const char* what, const Value& wanted, const Value& found) {
    if (wanted != found) {
        throw Failure(ErrorCode::VerificationFailed,
                      text("The finished file has ", what, " ", found, " instead of ", wanted));
    }
}

DemuxerPtr open(const SourceFile& file) {
    AVFormatContext* demuxer = owned<DemuxerPtr>(avformat_alloc_context()).release();
    demuxer->pb = file.io();
    demuxer->flags |= AVFMT_FLAG_CUSTOM_IO;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", "mov,mp4", 0);
    av_dict_set(&options, "ignore_editlist", "1", 0); // every packet counts, also those not shown
    const int result = avformat_open_input(&demuxer, "", nullptr, &options);
    av_dict_free(&options);
    if (result < 0) {
        throw Failure(ErrorCode::VerificationFailed,
                      text("The finished file cannot be opened: ", ffmpegErrorText(result)));
    }
    return DemuxerPtr(demuxer);
}

void compare(AVStream& stream, const WrittenTrack& track, std::uint64_t size) {
    const AVCodecParameters& found = *stream.codecpar;
    expect("a track of type", static_cast<int>(track.type), static_cast<int>(found.codec_type));
    expect("a track of codec", static_cast<int>(track.codec), static_cast<int>(found.codec_id));
    if (track.type == AVMEDIA_TYPE_VIDEO) {
        expect("a width of", track.width, found.width);
        expect("a height of", track.height, found.height);
    }
    expect("packets", track.packets, stream.nb_frames);
    const int entries = avformat_index_get_entries_count(&stream);
    for (int i = 0; i < entries; ++i) {
        const AVIndexEntry& entry = *avformat_index_get_entry(&stream, i);
        if (entry.pos < 0 ||
            static_cast<std::uint64_t>(entry.pos) + static_cast<std::uint64_t>(entry.size) > size) {
            throw Failure(ErrorCode::VerificationFailed,
                          text("The finished file's packet ", i, " lies outside of it"));
        }
    }
    const double wanted = toSeconds(track.duration);
    const double duration = stream.duration == kNoTime
                                ? 0
                                : static_cast<double>(stream.duration) * av_q2d(stream.time_base);
    if (std::abs(wanted - duration) > kToleratedSeconds) {
        throw Failure(
            ErrorCode::VerificationFailed,
            text("The finished file's track lasts ", duration, " s instead of ", wanted, " s"));
    }
}

} // namespace

void verify(const std::string& path, std::uint64_t size, const std::vector<WrittenTrack>& written,
            const StopFlag& stop) {
    const SourceFile file(path, stop);
    expect("a size of", size, file.state().size);
    const DemuxerPtr demuxer = open(file);
    // A track that got no packet, as of a microphone that was muted all along, is not in the file.
    std::vector<WrittenTrack> expected;
    std::ranges::copy_if(written, std::back_inserter(expected),
                         [](const WrittenTrack& track) { return track.packets > 0; });
    expect("tracks", expected.size(), static_cast<std::size_t>(demuxer->nb_streams));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        compare(*demuxer->streams[i], expected[i], size);
    }
    file.throwIfUnsound();
}

} // namespace zelcore
