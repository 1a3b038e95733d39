// Real recordings through the real road: launcher, loader, engine, session, log.

#include "e2e/LauncherFixture.h"
#include "e2e/Recordings.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>

namespace e2e {
namespace {

using tarn::testing::readFile;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RealEngine : public LauncherFixture {
protected:
    std::string recording(const std::string& name, int seconds = 2) {
        makeRecording(mFolder / name, seconds);
        return mFolder / name;
    }
};

/// time <Level> [process:thread][name]File:line function:tag:message
bool hasLogForm(const std::string& line) {
    std::array<int, 6> time{};
    std::array<char, 16> level{};
    unsigned int process = 0;
    unsigned int thread = 0;
    std::array<char, 64> file{};
    int number = -1;
    int end = 0;
    std::string unnamed = line;
    if (const std::size_t name = unnamed.find("]["); name != std::string::npos) {
        unnamed.erase(name + 2, unnamed.find(']', name + 2) - name - 2);
    }
    return std::sscanf(unnamed.c_str(),
                       "%4d-%2d-%2dT%2d:%2d:%2dZ <%15[A-Za-z]> [%u:0x%x][]%63[^: ]:%d %n", &time[0],
                       &time[1], &time[2], &time[3], &time[4], &time[5], level.data(), &process,
                       &thread, file.data(), &number, &end) == 11 &&
           unnamed.find(':', unnamed.find(':', static_cast<std::size_t>(end)) + 1) !=
               std::string::npos &&
           (level.data() == std::string("Debug") || level.data() == std::string("Info"));
}

TEST_F(RealEngine, TurnsARecordingIntoAPlayableFileAndKeepsIt) {
    const std::string source = recording("m\xC3\xBC\xC3\xBC\xE4\xBC\x9A 10:30 | a.mkv", 3);
    const std::string before = readFile(source);
    const ProcessResult result = launch({source, mDestination});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("The recording is ready"));
    const MediaFacts facts = probe(mDestination);
    EXPECT_THAT(facts.codecs, ElementsAre("h264", "aac"));
    EXPECT_NEAR(facts.seconds, probe(source).seconds, 0.1);
    EXPECT_EQ(readFile(source), before);
    EXPECT_EQ(filesLeft().size(), 2U);
}

TEST_F(RealEngine, JoinsPartsAndDeletesThemWhenAsked) {
    const std::vector<std::string> parts{recording("1.mkv", 2), recording("2.mkv", 3)};
    const ProcessResult result = launch({"--delete-sources", parts[0], parts[1], mDestination});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NEAR(probe(mDestination).seconds, 5.0, 0.2);
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
        EXPECT_EQ(readFile(source), before);
        EXPECT_EQ(readFile(mDestination), "older");
    }
    EXPECT_THAT(filesLeft(), ElementsAre("empty.mkv", "out.mp4", "text.mp4"));
}

TEST_F(RealEngine, CtrlCInTheMiddleLeavesOnlyTheRecording) {
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    const std::string source = mFolder / "slow.avi";
    makeSlowRecording(source, 20);
    const std::string before = readFile(source);
    Process process(command({"--delete-sources", source, mDestination}));
    ASSERT_TRUE(process.waitForOutput("10 %"));
    const auto begin = std::chrono::steady_clock::now();
    process.interrupt();
    EXPECT_EQ(process.wait(), 130) << process.errors();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    EXPECT_THAT(filesLeft(), ElementsAre("slow.avi"));
    EXPECT_EQ(readFile(source), before);
}

TEST_F(RealEngine, LogsTheRunFromStartToEndWithPersonalNamesMasked) {
    const std::string user = tarn::platform::userName().value_or("");
    ASSERT_GE(user.size(), 3U) << "shorter names are not masked";
    const std::string source = recording("of " + user + ".mkv");
    ASSERT_EQ(launch({source, mDestination}).status, 0);

    const std::vector<std::string> lines = logLines();
    for (const std::string& line : lines) {
        EXPECT_TRUE(hasLogForm(line)) << line;
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
        "ZEL:0 ::Source \"" + mFolder.path() + "/of ********.mkv\"",
        "ZEL:0 ::Destination",
        "FreeLibrary successfully",
        "The conversion ends with status 0",
    };
    for (const std::string& line : lines) {
        found += found < inOrder.size() && line.contains(inOrder[found]) ? 1 : 0;
    }
    EXPECT_EQ(found, inOrder.size()) << "missing: " << inOrder[std::min(found, inOrder.size() - 1)];
}

TEST_F(RealEngine, EachRunKeepsTheLogOfTheOneBefore) {
    const std::string source = recording("a.mkv", 1);
    ASSERT_EQ(launch({source, mDestination}).status, 0);
    ASSERT_EQ(launch({source, mDestination}).status, 0);
    EXPECT_EQ(logged("The conversion ends"), 1);
    int previous = 0;
    for (const std::string& file : tarn::FileUtils().getFiles(logFolder())) {
        previous += tarn::FileUtils().fileNameOfPath(file).starts_with("last_run_") ? 1 : 0;
    }
    EXPECT_EQ(previous, 1);
}

} // namespace
} // namespace e2e
