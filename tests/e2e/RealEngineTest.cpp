// Real recordings through the real road: launcher, loader, engine, session, log.

#include "e2e/LauncherFixture.h"
#include "engine/MediaProbe.h"
#include "platform/KnownFolders.h"

#include <regex>

namespace e2e {
namespace {

class RealEngine : public LauncherFixture {
protected:
    /// One of the recordings that the build makes, under a name of the test's own.
    std::string recording(const std::string& name, const std::string& made = "h264-aac.mkv") const {
        tarn::FileUtils().copyFile(RECORDINGS_FOLDER "/" + made, mFolder / name);
        return mFolder / name;
    }
    void expectConverted(const std::vector<std::string>& arguments, double seconds) const {
        const ProcessResult result = launch(arguments);
        ASSERT_EQ(result.status, 0) << result.errors;
        EXPECT_THAT(result.errors, HasSubstr("The recording is ready"));
        const auto tracks = zelcore::testing::probe(mDestination);
        ASSERT_EQ(tracks.size(), 2U);
        EXPECT_EQ(tracks[0].codec + " " + tracks[1].codec, "h264 aac");
        EXPECT_NEAR(tracks[0].end, seconds, 0.2);
    }
};

TEST_F(RealEngine, TurnsRecordingsIntoOnePlayableFileAndDeletesThemOnlyWhenAsked) {
    const std::string source = recording("m\xC3\xBC\xC3\xBC\xE4\xBC\x9A 10.30 a.mkv");
    const std::string before = readFile(source);
    expectConverted({source, mDestination}, 2);
    EXPECT_EQ(readFile(source), before);
    EXPECT_EQ(filesLeft().size(), 2U);
    expectConverted({"--delete-sources", source, recording("2.mkv"), mDestination}, 4);
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
}

TEST_F(RealEngine, CtrlCInTheMiddleLeavesOnlyTheRecordings) {
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    expectStopped(command({"--delete-sources", recording("1.webm", "long.webm"),
                           recording("2.webm", "long.webm"), mDestination}),
                  "10 %");
    EXPECT_THAT(filesLeft(), ElementsAre("1.webm", "2.webm"));
    EXPECT_EQ(readFile(mFolder / "1.webm"), readFile(RECORDINGS_FOLDER "/long.webm"));
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
    const std::vector<std::string> inOrder{"Setting Log level to Debug",
                                           "record-converter 1.",
                                           "Loaded ",
                                           "media converter instance is created successfully.",
                                           "ZEL:0 ::Source \"",
                                           "of ********.mkv\"",
                                           "ZEL:0 ::Destination",
                                           "FreeLibrary successfully",
                                           "The conversion ends with status 0"};
    auto expected = inOrder.begin();
    const std::vector<std::string> lines = logLines();
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::regex_match(line, form)) << line;
        while (expected != inOrder.end() && line.contains(*expected)) {
            ++expected;
        }
    }
    EXPECT_TRUE(expected == inOrder.end()) << "missing: " << *expected;
    for (const std::string& name :
         {user, tarn::platform::computerName().value_or(""), tarn::platform::profileFolder()}) {
        EXPECT_TRUE(name.size() < 3 || logged(name) == 0) << name;
    }
    // The log of the run before is kept beside it.
    EXPECT_EQ(logged("The conversion ends"), 1);
    EXPECT_EQ(tarn::FileUtils().readAllLines(logFolder() + "/last_run_current_log.txt").size(),
              lines.size());
}

} // namespace
} // namespace e2e
