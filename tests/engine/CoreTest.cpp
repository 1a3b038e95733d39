#include "engine/EngineUnderTest.h"
#include "engine/media/Muxer.h"
#include "engine/verify/Verifier.h"

#include <fstream>

// Faults that no conversion can bring about from outside.
namespace zelcore::testing {

using tarn::testing::readFile;
using tarn::testing::TemporaryFolder;

/// A recording copied packet by packet, up to where a conversion verifies what it wrote; with the
/// index behind the packets and in front of them.
class Verification : public ::testing::TestWithParam<bool> {
protected:
    Verification() {
        AVFormatContext* opened = nullptr;
        require(avformat_open_input(&opened, recording("h264-aac.mkv").c_str(), nullptr, nullptr),
                "recording");
        const DemuxerPtr demuxer(opened);
        require(avformat_find_stream_info(opened, nullptr), "recording");
        Muxer muxer(mFile, GetParam());
        for (unsigned i = 0; i < opened->nb_streams; ++i) {
            muxer.addTrack(*opened->streams[i]->codecpar, opened->streams[i]->time_base);
        }
        muxer.writeHeader();
        const PacketPtr packet = makePacket();
        while (av_read_frame(opened, packet.get()) >= 0) {
            const auto track = static_cast<std::size_t>(packet->stream_index);
            // Matroska tells no decoding times in the beginning.
            packet->dts = packet->dts == kNoTime ? packet->pts - 1000 : packet->dts;
            muxer.write(track, *packet, opened->streams[track]->time_base);
        }
        muxer.finish();
        mWritten = muxer.takeWritten().tracks;
        mFile.closeDurably();
        mContent = readFile(mFile.temporaryPath());
    }

    bool isPassed(const std::string& content) const {
        std::ofstream(mFile.temporaryPath(), std::ios::binary) << content;
        return isPassed();
    }
    bool isPassed() const {
        try {
            verify(mFile, {mWritten}, mStop);
            return true;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ErrorCode::VerificationFailed) << failure.what();
            return false;
        }
    }
    /// Where the payload of the n-th box of a kind begins.
    std::size_t box(const std::string& kind, int number = 0) const {
        std::size_t at = mContent.find("moov");
        for (int i = 0; i <= number; ++i) {
            at = mContent.find(kind, at) + kind.size();
        }
        EXPECT_LT(at, mContent.size()) << kind;
        return at;
    }

    TemporaryFolder mFolder;
    StopFlag mStop;
    DestinationFile mFile{mFolder / "out.mp4", {}, mStop};
    std::vector<WrittenTrack> mWritten;
    std::string mContent;
};

TEST_P(Verification, NoticesEveryDamageBetweenWritingAndReopening) {
    const std::size_t packets = mContent.find("mdat") + 4;
    const std::size_t index = mContent.find("moov") - 4;
    ASSERT_EQ(index < packets, GetParam());
    const std::size_t end = GetParam() ? mContent.size() : index;
    using Damage = std::function<void(std::string&)>;
    const auto fill = [](std::size_t at, std::size_t count, char byte = 0) -> Damage {
        return [=](std::string& file) { file.replace(at, count, count, byte); };
    };
    const auto flip = [](std::size_t at) -> Damage {
        return [=](std::string& file) { file[at] = static_cast<char>(file[at] ^ 1); };
    };
    const auto rename = [&](const std::string& kind, const std::string& to, int number = 0) {
        const std::size_t at = box(kind, number) - 4;
        return Damage([=](std::string& file) { file.replace(at, 4, to); });
    };
    const std::pair<const char*, Damage> damages[] = {
        {"first packet's first bit", flip(packets)},
        {"last packet's last bit", flip(end - 1)},
        {"everything a byte late",
         [=](std::string& file) { std::rotate(&file[packets], &file[end - 1], &file[0] + end); }},
        {"a piece missing", [=](std::string& file) { file.erase(packets + 99, 512); }},
        {"cut by a byte", [](std::string& file) { file.pop_back(); }},
        {"cut before the index", [=](std::string& file) { file.resize(index); }},
        {"a byte more", [](std::string& file) { file += 'x'; }},
        {"another file", [](std::string& file) { file = readFile(recording("h264-aac.mp4")); }},
        {"kind of file", flip(8)},
        {"size of the packets", fill(packets - 8, 4)},
        {"index renamed", rename("moov", "free")},
        {"duration of all", fill(box("mvhd") + 16, 4)},
        {"a track gone", rename("trak", "free", 1)},
        {"orientation", fill(box("tkhd") + 40, 4, 1)},
        {"shown width", fill(box("tkhd") + 76, 4, 1)},
        {"edit list gone", rename("edts", "free")},
        {"edit list's begin", flip(box("elst") + 15)},
        {"a track's clock", flip(box("mdhd") + 15)},
        {"a track's duration", flip(box("mdhd") + 19)},
        {"language", flip(box("mdhd") + 21)},
        {"sort of track", fill(box("hdlr") + 8, 4, 'x')},
        {"codec", rename("avc1", "hvc1")},
        {"width", flip(box("avc1") + 25)},
        {"decoder data", fill(box("avcC"), 20)},
        {"decoder data's end", flip(box("avcC") + 30)},
        {"sound's decoder data", fill(box("esds") + 4, 30)},
        {"colours", rename("pasp", "free")},
        {"decoding times", flip(box("stts") + 15)},
        {"order of showing", flip(box("ctts") + 15)},
        {"key frames", flip(box("stss") + 11)},
        {"packets per chunk", flip(box("stsc") + 15)},
        {"a packet's size", flip(box("stsz") + 15)},
        {"a place", flip(box("stco") + 11)},
        {"metadata", rename("udta", "free")},
    };
    EXPECT_TRUE(isPassed());
    for (const auto& [name, damage] : damages) {
        std::string content = mContent;
        damage(content);
        ASSERT_NE(content, mContent) << name;
        EXPECT_FALSE(isPassed(content)) << name;
    }
    EXPECT_TRUE(isPassed(mContent));
}

// Its index is mended on the disk, and its packets are read back while others are written.
TEST_P(Verification, LooksAtALongFileAsCloselyAsAtAShortOne) {
    enum class Damaged { Never, WhileItIsWritten, WhenItIsClosed };
    using enum Damaged;
    for (const Damaged damaged : {Never, WhileItIsWritten, WhenItIsClosed}) {
        DestinationFile file(mFolder / "long.mp4", {}, mStop);
        const auto damage = [&] {
            std::fstream open(file.temporaryPath(), std::ios::in | std::ios::out);
            EXPECT_TRUE(open.seekp(60'000'000).write("damage", 6).flush());
        };
        Muxer muxer(file, GetParam());
        const auto sound = owned<ParametersPtr>(avcodec_parameters_alloc());
        sound->codec_type = AVMEDIA_TYPE_AUDIO;
        sound->codec_id = AV_CODEC_ID_MP3;
        sound->sample_rate = 48000;
        av_channel_layout_default(&sound->ch_layout, 2);
        muxer.addTrack(*sound, {1, 48000});
        muxer.writeHeader();
        const PacketPtr packet = makePacket();
        for (int i = 0; i < 100'000; ++i) {
            require(av_new_packet(packet.get(), 851 + i % 99), "packet");
            std::fill_n(packet->data, packet->size, static_cast<std::uint8_t>(i));
            packet->pts = std::int64_t{i} * 1152 + i % 7;
            packet->duration = 1152;
            muxer.write(0, *packet, {1, 48000});
            if (i == 70'000 && damaged == WhileItIsWritten) {
                damage();
            }
        }
        muxer.finish();
        file.closeDurably();
        WrittenFile written = muxer.takeWritten();
        if (damaged == WhenItIsClosed) {
            damage();
        }
        if (damaged == Never) {
            EXPECT_NO_THROW(verify(file, written, mStop));
            ++written.tracks[0].times; // the muxer made others of them
            EXPECT_THROW(verify(file, written, mStop), Failure);
            --written.tracks[0].times;
            written.tracks[0].isTranscoded = true; // what an encoder makes has to decode
            EXPECT_THROW(verify(file, written, mStop), Failure);
        } else {
            EXPECT_THROW(verify(file, written, mStop), Failure);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(IndexBehindAndInFront, Verification, ::testing::Bool());

} // namespace zelcore::testing
