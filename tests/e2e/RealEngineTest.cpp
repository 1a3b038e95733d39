// Real recordings through the real road: launcher, loader, engine, session, log.

#include "e2e/LauncherFixture.h"
#include "engine/MediaProbe.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <regex>

namespace e2e {
namespace {

using tarn::testing::readFile;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using zelcore::testing::probe;

class RealEngine : public LauncherFixture {
protected:
    /// One of the recordings that the build makes, under a name of the test's own.
    std::string recording(const std::string& name, const std::string& made = "h264-aac.mkv") const {
        tarn::FileUtils().copyFile(RECORDINGS_FOLDER "/" + made, mFolder / name);
        return mFolder / name;
    }
    void expectTwoSecondsTimes(int count) const {
        const auto tracks = probe(mDestination);
        ASSERT_EQ(tracks.size(), 2U);
        EXPECT_EQ(tracks[0].codec + " " + tracks[1].codec, "h264 aac");
        EXPECT_NEAR(tracks[0].end, 2.0 * count, 0.2);
    }
};

TEST_F(RealEngine, TurnsARecordingIntoAPlayableFileAndKeepsIt) {
    const std::string source = recording("m\xC3\xBC\xC3\xBC\xE4\xBC\x9A 10.30 a.mkv");
    const std::string before = readFile(source);
    const ProcessResult result = launch({source, mDestination});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("The recording is ready"));
    expectTwoSecondsTimes(1);
    EXPECT_EQ(readFile(source), before);
    EXPECT_EQ(filesLeft().size(), 2U);
}

TEST_F(RealEngine, JoinsPartsAndDeletesThemWhenAsked) {
    const ProcessResult result =
        launch({"--delete-sources", recording("1.mkv"), recording("2.mkv"), mDestination});
    ASSERT_EQ(result.status, 0) << result.errors;
    expectTwoSecondsTimes(2);
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
}

TEST_F(RealEngine, SaysWhyItCanNotConvertAndTouchesNothing) {
    mFolder.write("out.mp4", "older");
    const std::vector<std::pair<std::string, std::string>> cases{
        {mFolder.write("text.mp4", "Dear diary, this is no recording.\n"), "20005"},
        {mFolder.write("empty.mkv", ""), "20004"},
    };
    for (const auto& [source, code] : cases) {
        const std::string before = readFile(source);
        const ProcessResult result = launch({"--delete-sources", source, mDestination});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, AllOf(HasSubstr("error " + code + ": "),
                                         HasSubstr(tarn::FileUtils().fileNameOfPath(source))));
        EXPECT_EQ(readFile(source) + readFile(mDestination), before + "older");
    }
    EXPECT_THAT(filesLeft(), ElementsAre("empty.mkv", "out.mp4", "text.mp4"));
}

TEST_F(RealEngine, CtrlCInTheMiddleLeavesOnlyTheRecordings) {
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    std::vector<std::string> arguments{"--delete-sources"};
    for (const std::string name : {"1.webm", "2.webm", "3.webm"}) {
        arguments.push_back(recording(name, "long.webm"));
    }
    arguments.push_back(mDestination);
    Process process(command(arguments));
    ASSERT_TRUE(process.waitForOutput("10 %"));
    const auto begin = std::chrono::steady_clock::now();
    process.interrupt();
    EXPECT_EQ(process.wait(), 130) << process.errors();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    EXPECT_THAT(filesLeft(), ElementsAre("1.webm", "2.webm", "3.webm"));
    EXPECT_EQ(readFile(arguments[1]), readFile(RECORDINGS_FOLDER "/long.webm"));
}

TEST_F(RealEngine, LogsTheRunFromStartToEndWithPersonalNamesMasked) {
    const std::string user = tarn::platform::userName().value_or("");
    ASSERT_GE(user.size(), 3U) << "shorter names are not masked";
    const std::string source = recording("of " + user + ".mkv");
    ASSERT_EQ(launch({source, mDestination}).status, 0);
    ASSERT_EQ(launch({source, mDestination}).status, 0);

    // time <Level> [process:thread][name]File:line function:tag:message
    const std::regex form(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ <(Debug|Info)> )"
                          R"(\[\d+:0x[0-9a-f]+\]\[[^\]]*\][^ :]*:\d+ [^:]*(::[^:]+)*:[^:]*:.*)");
    const std::vector<std::string> lines = logLines();
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::regex_match(line, form)) << line;
    }
    for (const std::string& name :
         {user, tarn::platform::computerName().value_or(""), tarn::platform::profileFolder()}) {
        EXPECT_TRUE(name.size() < 3 || logged(name) == 0) << name;
    }
    std::size_t found = 0;
    const std::vector<std::string> inOrder{
        "Setting Log level to Debug",
        "record-converter 1.",
        "Loaded ",
        "media converter instance is created successfully.",
        "ZEL:0 ::Source \"",
        "of ********.mkv\"",
        "ZEL:0 ::Destination",
        "FreeLibrary successfully",
        "The conversion ends with status 0",
    };
    for (const std::string& line : lines) {
        while (found < inOrder.size() && line.contains(inOrder[found])) {
            ++found;
        }
    }
    EXPECT_EQ(found, inOrder.size()) << "missing: " << inOrder[std::min(found, inOrder.size() - 1)];
    // The log of the run before is kept beside it.
    EXPECT_EQ(logged("The conversion ends"), 1);
    EXPECT_EQ(tarn::FileUtils().readAllLines(logFolder() + "/last_run_current_log.txt").size(),
              lines.size());
}

} // namespace
} // namespace e2e
