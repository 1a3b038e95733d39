// What the launcher refuses before anything starts.

#include "e2e/LauncherFixture.h"
#include "platform/Library.h"

namespace e2e {
namespace {

class Refusals : public LauncherFixture {
protected:
    void expectRefused(const ProcessResult& result, const std::string& told) {
        SCOPED_TRACE(told);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, AllOf(StartsWith("record-converter: "), HasSubstr(told),
                                         ::testing::EndsWith("\n")));
        EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1);
        EXPECT_EQ(readFile(mSource), "write done\nprogress 100");
        EXPECT_FALSE(exists(mDestination));
    }

    std::string mSource = mFolder.write("a.mkv", "write done\nprogress 100");
};

TEST_F(Refusals, NameWhatStandsInTheWayInOneSentence) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "See record-converter --help."},
        {{"--quick", mSource, mDestination}, "\"--quick\" is unknown"},
        {{std::string(32000, '|'), mDestination}, "There is no recording"},
        {{"\xFF\xC0\xED\xA0\x80", mDestination}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {{"a\n\x1B[31m.mkv", mDestination}, "a??[31m.mkv"},
        {{mSource, mSource}, "is one of the recordings"},
    };
    for (const auto& [arguments, told] : cases) {
        expectRefused(launch(arguments), told);
    }
    expectRefused(launchFake("no-factory", {mSource, mDestination}), "CreateMediaConverter");
}

TEST_F(Refusals, AnEngineIsTakenFromItsFolderAndFromNowhereElse) {
    const tarn::FileUtils files;
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    const std::string empty = mFolder.makeFolder("empty");
    ASSERT_TRUE(files.copyFile(files.joinPath(fakeEngineFolder("whole"), name), mFolder / name));
    // A relative folder is one below the working folder, and nothing else.
    const std::pair<std::string, std::string> cases[] = {
        {empty, "There is no " + name}, {"empty", empty}, {"", "--engine-folder"}};
    for (const auto& [folder, told] : cases) {
        Process::Start start = command({"--engine-folder", folder, mSource, mDestination});
        start.environment.emplace_back("LD_LIBRARY_PATH", mFolder.path());
        start.environment.emplace_back("PATH", mFolder.path());
        expectRefused(runProcess(start), told);
    }
    EXPECT_EQ(launch({"--engine-folder", ".", mSource, mDestination}).status, 0);
}

TEST_F(Refusals, HelpAndVersionGoToStandardOutputAndLeaveNoLog) {
    const ProcessResult help = launch({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, AllOf(StartsWith("usage: record-converter"), HasSubstr("\nlog: ")));
    const ProcessResult version = launch({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, StartsWith("record-converter "));
    EXPECT_EQ(help.errors + version.errors, "");
    EXPECT_THAT(tarn::FileUtils().getFilesRecursive(mData.path()), ElementsAre());
}

} // namespace
} // namespace e2e
