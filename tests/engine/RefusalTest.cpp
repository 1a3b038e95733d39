#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"
#include "platform/Files.h"

#include <gmock/gmock.h>

#include <array>

namespace zelcore::testing {

using tarn::testing::readFile;

class Refusal : public EngineTest {};

TEST_F(Refusal, NamesWhatIsWrongWithASource) {
    const std::string mkv = readFile(recording("h264-aac.mkv"));
    const std::string mp4 = readFile(recording("h264-aac.mp4"));
    const std::string wav = readFile(recording("pcm.wav"));
    const auto half = [](const std::string& whole) { return whole.substr(0, whole.size() / 2); };
    std::string unknown = readFile(recording("vp9-opus.webm"));
    unknown.replace(unknown.find("V_VP9"), 5, "V_QQ9");
    const std::string playlist = "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:2,\n" +
                                 recording("h264-aac.ts") + "\n#EXT-X-ENDLIST\n";
    const std::pair<std::int32_t, std::string> cases[] = {
        {20001, folder / "missing.mkv"},
        {20001, folder.write("plain", "x") + "/under-a-file.mkv"},
        {20002, folder.makeFolder("folder.mkv")},
        {20004, folder.write("empty.mp4", "")},
        {20005, folder.write("text.mp4", "Minutes of the meeting\nNothing was decided.\n")},
        {20005, folder.write("playlist.mp4", playlist)},
        {20005, folder.write("one-byte.mkv", "\x1A")},
        {20006, folder.write("header.mkv", mkv.substr(0, 100))},
        {20006, folder.write("header.mp4", mp4.substr(0, 100))},
        {20006, folder.write("half.mkv", half(mkv))},
        {20006, folder.write("half.mp4", half(mp4))},
        {20006, folder.write("half.wav", half(wav))},
        {20010, recording("subtitles-alone.mkv")},
        {20011, folder.write("unknown.webm", unknown)},
    };
    for (const auto& [code, path] : cases) {
        const bool isFile = code != 20002 && code != 20001;
        const std::string before = isFile ? readFile(path) : "";
        expectRefusal(code, {path}, destination());
        expectRefusal(code, {recording("h264-aac.mkv"), path}, destination());
        EXPECT_EQ(isFile ? readFile(path) : "", before);
    }
}

TEST_F(Refusal, NamesWhatIsWrongWithTheDestination) {
    const std::string source = recording("h264-aac.mkv");
    expectRefusal(20022, {source}, folder / "no/such/folder/out.mp4");
    expectRefusal(20022, {source}, folder.write("file", "x") + "/out.mp4");
    expectRefusal(20024, {source}, folder.makeFolder("folder.mp4"));
    expectRefusal(20005, {folder / "file"}, folder.write("older.mp4", "older"));
}

TEST_F(Refusal, KeepsASourceThatIsAlsoTheDestination) {
    const std::string source = folder.write("a.mkv", readFile(recording("h264-aac.mkv")));
    const std::string link = folder / "link.mp4";
    ASSERT_TRUE(tarn::platform::makeHardLink(source, link));
    const std::string otherSpelling = folder.path() + "/./a.mkv";
    for (const std::string& to : {source, link, otherSpelling}) {
        expectRefusal(20021, {source}, to);
        expectRefusal(20021, {recording("h264-aac.mkv"), source}, to);
    }
    EXPECT_EQ(readFile(source), readFile(recording("h264-aac.mkv")));
}

TEST_F(Refusal, OfACallIsTheStartsResultAndNotifiesNobody) {
    RecordingSink sink;
    zel::IZelMediaConverter& converter = *engine.create(sink);
    const std::string to = destination();
    const std::array<const char*, 2> paths = {"a.mkv", nullptr};
    EXPECT_EQ(converter.StartMultiple(paths.data(), 0, to.c_str(), 3, 4), -100);
    EXPECT_EQ(converter.StartMultiple(paths.data(), 2, to.c_str(), 3, 4), 20041);
    EXPECT_EQ(converter.StartMultiple(nullptr, 2, to.c_str(), 3, 4), 20041);
    EXPECT_EQ(converter.StartSingle(nullptr, to.c_str(), 3, 4), 20041);
    EXPECT_EQ(converter.StartSingle("a.mkv", "", 3, 4), 20041);
    zel::IZelMediaConverter* none = &converter;
    EXPECT_TRUE(zel::isFailure(engine.createConverter(&none, nullptr)));
    EXPECT_TRUE(zel::isFailure(engine.createConverter(nullptr, &sink)));
    EXPECT_EQ(engine.stopConversions(60'000), 0);
    EXPECT_EQ(sink.calls(), 0U);
    EXPECT_TRUE(zel::isFailure(20041) && zel::isFailure(20001) && zel::isFailure(20044));
}

TEST_F(Refusal, OfASecondStartLeavesTheRunningConversionAlone) {
    RecordingSink sink;
    zel::IZelMediaConverter& converter = *engine.create(sink);
    ASSERT_EQ(start(converter, {recording("long.webm")}, destination()), 0);
    EXPECT_EQ(start(converter, {recording("h264-aac.mkv")}, folder / "second.mp4"), 20042);
    ASSERT_TRUE(sink.waitForEnd());
    EXPECT_THAT(sink.errors(), ::testing::IsEmpty());
    EXPECT_EQ(engine.stopConversions(60'000), 0);
    EXPECT_EQ(start(converter, {folder / "missing"}, destination()), 0) << "free again";
    EXPECT_EQ(engine.stopConversions(60'000), 0);
}

} // namespace zelcore::testing
