#include "engine/EngineUnderTest.h"

#include <array>
#include <filesystem>
#include <future>

namespace zelcore::testing {

using tarn::testing::readFile;

class Refusal : public EngineTest {
protected:
    const std::string whole = recording("h264-aac.mkv");
};

TEST_F(Refusal, NamesWhatIsWrongWithAFile) {
    expectRefusal(20001, {whole, folder / "missing.mkv"}, destination);
    expectRefusal(20001, {folder.write("plain", "x") + "/under-a-file.mkv"}, destination);
    expectRefusal(20002, {folder.makeFolder("folder.mkv")}, destination);
    // What is cut short loses content, which this caller does not accept.
    const std::string content = readFile(whole);
    expectRefusal(20012, {folder.write("half.mkv", content.substr(0, content.size() / 2))},
                  destination);
    expectRefusal(20022, {whole}, folder / "no/such/folder/out.mp4");
    expectRefusal(20022, {whole}, folder.write("file", "x") + "/out.mp4");
    expectRefusal(20024, {whole}, folder.makeFolder("folder.mp4"));
    const std::string kept = folder.write("kept.mp4", "kept");
    std::filesystem::permissions(kept, std::filesystem::perms::owner_read);
    expectRefusal(20023, {whole}, kept);
    std::filesystem::permissions(kept, std::filesystem::perms::owner_all);
    expectRefusal(20005, {folder / "file"}, folder.write("older.mp4", "older"));
    EXPECT_EQ(readFile(folder / "older.mp4"), "older");
}

TEST_F(Refusal, KeepsASourceThatIsAlsoTheDestination) {
    const std::string source = folder.write("a.mkv", readFile(whole));
    const std::string link = folder / "link.mp4";
    ASSERT_TRUE(tarn::platform::makeHardLink(source, link));
    for (const std::string& to : {source, link, folder.path() + "/./a.mkv"}) {
        expectRefusal(20021, {whole, source}, to);
    }
    EXPECT_EQ(readFile(source), readFile(whole));
}

TEST_F(Refusal, AStopAChangedSourceOrAFileThatComesCountsUpToTheRenaming) {
    const std::string source = folder / "a.mkv";
    const std::pair<std::int32_t, std::function<void()>> cases[] = {
        {0, [&] { stopConversions(0); }},
        {20008, [&] { folder.write("a.mkv", readFile(source) + "more"); }},
        {20008, [&] { folder.write("a.mkv", readFile(recording("h264-aac.mp4"))); }},
        {20028, [&] { folder.write("out.mp4", "another's"); }},
    };
    for (const auto& [code, change] : cases) {
        folder.write("a.mkv", readFile(whole));
        std::promise<void> verified;
        trace.onTrace = [&, &change = change](const std::string& line) {
            if (line == "The finished file is what was written") {
                change();
                verified.set_value();
            }
        };
        RecordingSink sink;
        ASSERT_EQ(start(sink, {source}, destination), 0);
        ASSERT_EQ(verified.get_future().wait_for(std::chrono::minutes(1)),
                  std::future_status::ready);
        ASSERT_TRUE(code == 0 || sink.waitFor());
        ASSERT_EQ(stopConversions(60'000), 0); // the thread's end
        EXPECT_EQ(sink.errors, std::vector<std::int32_t>(code == 0 ? 0 : 1, code));
        EXPECT_LT(sink.progress.back(), 100);
        EXPECT_EQ(readFile(destination), code == 20028 ? "another's" : "");
        EXPECT_EQ(temporaries(), 0U);
    }
}

TEST_F(Refusal, OfACallIsTheStartsResultAndNotifiesNobody) {
    RecordingSink sink;
    zel::IZelMediaConverter& converter = create(sink);
    const char* to = destination.c_str();
    const std::array<const char*, 2> paths = {"a.mkv", nullptr};
    EXPECT_EQ(converter.StartMultiple(paths.data(), 0, to, 3, 4), -100);
    EXPECT_EQ(converter.StartMultiple(paths.data(), 2, to, 3, 4), 20041);
    EXPECT_EQ(converter.StartSingle(nullptr, to, 3, 4), 20041);
    EXPECT_EQ(converter.StartSingle("a.mkv", "", 3, 4), 20041);
    EXPECT_TRUE(zel::isFailure(createConverter(nullptr, &sink)));
    // A second start leaves the running conversion alone; after its end the next one may come.
    const std::string source = recording("long.webm");
    ASSERT_EQ(converter.StartSingle(source.c_str(), to, 3, 4), 0);
    EXPECT_EQ(converter.StartSingle(whole.c_str(), (folder / "second.mp4").c_str(), 3, 4), 20042);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
    EXPECT_THAT(sink.errors, ::testing::IsEmpty());
    EXPECT_EQ(converter.StartSingle((folder / "missing").c_str(), to, 3, 4), 0);
    EXPECT_EQ(stopConversions(60'000), 0);
}

} // namespace zelcore::testing
