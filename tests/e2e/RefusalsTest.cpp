// What the launcher refuses before anything starts.

#include "e2e/LauncherFixture.h"
#include "platform/Library.h"
#include "support/FakeLibraries.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace e2e {
namespace {

using tarn::testing::fakeEngineFolder;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Refusals : public LauncherFixture {
protected:
    void expectRefused(const ProcessResult& result, const std::string& told) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors,
                    AllOf(StartsWith("record-converter: "), HasSubstr(told), EndsWith("\n")));
        EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1);
        EXPECT_EQ(tarn::testing::readFile(mSource), "write done\nprogress 100");
        EXPECT_FALSE(exists(mDestination));
    }

    std::string mSource = mFolder.write("a.mkv", "write done\nprogress 100");
};

TEST_F(Refusals, NameWhatStandsInTheWayInOneSentence) {
    const std::string text(32000, '|');
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "See record-converter --help."},
        {{"--quick", mSource, mDestination}, "\"--quick\" is unknown"},
        {{"gone.mkv", mDestination}, "There is no recording"},
        {{text, mDestination}, "There is no recording"},
        {{"a\n\x1B[31m.mkv", mDestination}, "a??[31m.mkv"},
        {{mSource, mSource}, "is one of the recordings"},
        {{"--engine-folder", fakeEngineFolder("no-factory"), mSource, mDestination},
         "CreateMediaConverter"},
    };
    for (const auto& [arguments, told] : cases) {
        SCOPED_TRACE(told);
        expectRefused(launch(arguments), told);
    }
}

TEST_F(Refusals, AnEngineIsTakenFromItsFolderAndFromNowhereElse) {
    const tarn::FileUtils files;
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    const std::string empty = mFolder.makeFolder("empty");
    ASSERT_TRUE(files.copyFile(files.joinPath(fakeEngineFolder("whole"), name), mFolder / name));
    Process::Start start = command({"--engine-folder", empty, mSource, mDestination});
    start.environment.emplace_back("LD_LIBRARY_PATH", mFolder.path());
    start.environment.emplace_back("PATH", mFolder.path());
    expectRefused(tarn::testing::runProcess(start), "There is no " + name);

    // A relative folder is one below the working folder, and nothing else.
    expectRefused(launch({"--engine-folder", "empty", mSource, mDestination}), empty);
    EXPECT_EQ(launch({"--engine-folder", ".", mSource, mDestination}).status, 0);
}

TEST_F(Refusals, HelpAndVersionGoToStandardOutputAndLeaveNoLog) {
    ProcessResult result = launch({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, AllOf(StartsWith("usage: record-converter"), HasSubstr("\nlog: "),
                                     HasSubstr("record-converter\n")));
    result = launch({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith("record-converter "));
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(tarn::FileUtils().getFilesRecursive(mData.path()), ElementsAre());
}

} // namespace
} // namespace e2e
