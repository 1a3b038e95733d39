// Every way that a conversion can end, played by the fake engine under the real launcher.

#include "e2e/LauncherFixture.h"
#include "support/FakeLibraries.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

namespace e2e {
namespace {

using tarn::testing::fakeEngineFolder;
using tarn::testing::readFile;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class Endings : public LauncherFixture {};

TEST_F(Endings, ACompleteConversionKeepsTheSourcesUnlessTheyAreToBeDeleted) {
    const std::string script = "progress 0\nprogress 55.5\nwrite done\nprogress 100\nprogress 100";
    const std::string a = mFolder.write("a.mkv", script);
    const std::string b = mFolder.write("b.mkv", "");

    ProcessResult result = launchFake("whole", {a, b, mDestination});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors,
                AllOf(HasSubstr("100 %\n"), HasSubstr("out.mp4"), Not(HasSubstr("\r"))));
    EXPECT_EQ(readFile(mDestination), "done");
    EXPECT_EQ(readFile(a), script);
    EXPECT_THAT(filesLeft(), ElementsAre("a.mkv", "b.mkv", "out.mp4"));
    EXPECT_EQ(logged("FreeLibrary successfully"), 2);

    result = launchFake("whole", {"--delete-sources", "a.mkv", "b.mkv", "out.mp4"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4")) << result.errors;
}

TEST_F(Endings, AnEngineWithoutTheStopExportIsLeftToTheEndOfTheProcess) {
    const std::string source = mFolder.write("a.mkv", "write done\nprogress 100\nhold");
    const ProcessResult result = launchFake("no-stop", {"--delete-sources", source, mDestination});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
    EXPECT_EQ(logged("FreeLibrary"), 0);
    EXPECT_EQ(logged("The conversion ends with status 0"), 1);
}

TEST_F(Endings, AFailureKeepsTheSourcesEvenWhenTheyAreToBeDeleted) {
    struct Case {
        std::string variant;
        std::string script;
        std::string told;
    };
    const std::vector<Case> cases{
        {"whole", "progress 60\nerror 17", "its error 17."},
        {"whole", "progress nan\nerror -3", "its error -3."},
        {"whole", "write done\nerror 5\nprogress 100\nerror 6", "its error 5."},
        {"whole", "progress 100", "wrote no destination"},
        {"whole", "write \nprogress 100", "wrote no destination"},
        {"whole", "result -100", "did not start"},
        {"whole", "result 0x1000", "did not start"},
        {"failing-factory", "write done\nprogress 100", "did not start"},
        {"no-instance", "write done\nprogress 100", "did not start"},
        {"no-stop", "error 9\nhold", "its error 9."},
    };
    for (const auto& [variant, script, told] : cases) {
        SCOPED_TRACE(variant + ": " + script);
        const std::string source = mFolder.write("a.mkv", script);
        const ProcessResult result =
            launchFake(variant, {"--delete-sources", source, mDestination});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, AllOf(HasSubstr("The conversion failed"), HasSubstr(told),
                                         HasSubstr("current_log.txt")));
        EXPECT_EQ(readFile(source), script);
        tarn::FileUtils().remove(mDestination);
    }
    // A destination of an earlier run is none of this one's.
    const std::string source = mFolder.write("a.mkv", "progress 100");
    mFolder.write("out.mp4", "older");
    EXPECT_EQ(launchFake("whole", {"--delete-sources", source, mDestination}).status, 1);
    EXPECT_THAT(filesLeft(), ElementsAre("a.mkv", "out.mp4"));
}

TEST_F(Endings, AResultOutsideTheFailureBitsStartsAndALateErrorChangesNothing) {
    const std::string source =
        mFolder.write("a.mkv", "result 0x0FFF\nwrite done\nprogress 1e9\nerror 1\nprogress 3");
    const ProcessResult result = launchFake("whole", {"--delete-sources", source, mDestination});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
}

TEST_F(Endings, CtrlCStopsWithinASecondAndLeavesTheSourcesAlone) {
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    const auto interrupt = [this](const std::string& variant, const std::string& script) {
        SCOPED_TRACE(variant + ": " + script);
        const std::string source = mFolder.write("a.mkv", script);
        Process process(command({"--engine-folder", fakeEngineFolder(variant), "--delete-sources",
                                 source, mDestination}));
        ASSERT_TRUE(process.waitForOutput("20 %"));
        const auto begin = std::chrono::steady_clock::now();
        process.interrupt();
        EXPECT_EQ(process.wait(), 130);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
        EXPECT_THAT(process.errors(), HasSubstr("Stopped: nothing was converted"));
        EXPECT_EQ(readFile(source), script);
        EXPECT_EQ(logged("The conversion ends with status 130"), 1);
    };
    // Whatever it still says once it is asked to stop comes too late.
    interrupt("whole", "progress 20\nhold\nprogress 100");
    interrupt("no-stop", "write part\nprogress 20\nhold");
    EXPECT_THAT(filesLeft(), ElementsAre("a.mkv"));
    // A destination that was there before stays.
    mFolder.write("out.mp4", "older");
    interrupt("no-stop", "progress 20\nhold");
    EXPECT_EQ(readFile(mDestination), "older");
}

} // namespace
} // namespace e2e
