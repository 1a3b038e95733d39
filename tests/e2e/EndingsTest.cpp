// Every way that a conversion can end, played by the fake engine under the real launcher.

#include "e2e/LauncherFixture.h"

namespace e2e {
namespace {

class Endings : public LauncherFixture {};

TEST_F(Endings, ACompleteConversionKeepsTheSourcesUnlessTheyAreToBeDeleted) {
    const std::string script = "progress 0\nprogress 55.5\nwrite done\nprogress 100\nprogress 100";
    const std::string a = mFolder.write("a.mkv", script);
    const std::string b = mFolder.write("b.mkv", "");
    const ProcessResult result = launchFake("whole", {a, b, mDestination});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, AllOf(HasSubstr("100 %\n"), HasSubstr("out.mp4")));
    EXPECT_FALSE(result.errors.contains('\r'));
    EXPECT_EQ(readFile(mDestination), "done");
    EXPECT_EQ(readFile(a), script);
    EXPECT_THAT(filesLeft(), ElementsAre("a.mkv", "b.mkv", "out.mp4"));
    EXPECT_EQ(logged("FreeLibrary successfully"), 2);

    EXPECT_EQ(launchFake("whole", {"--delete-sources", "a.mkv", "b.mkv", "out.mp4"}).status, 0);
    EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
}

TEST_F(Endings, TheFirstEndingCountsAndAnEngineThatCannotBeStoppedIsLeftToTheProcess) {
    const std::pair<std::string, std::string> cases[] = {
        {"whole", "result 0x0FFF\nwrite done\nprogress 1e9\nerror 1\nprogress 3"},
        {"no-stop", "write done\nprogress 100\nhold"},
    };
    for (const auto& [variant, script] : cases) {
        const std::string source = mFolder.write("a.mkv", script);
        const ProcessResult result =
            launchFake(variant, {"--delete-sources", source, mDestination});
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_THAT(filesLeft(), ElementsAre("out.mp4"));
        EXPECT_EQ(logged("FreeLibrary") > 0, variant == "whole");
        EXPECT_EQ(logged("The conversion ends with status 0"), 1);
    }
}

TEST_F(Endings, AFailureKeepsTheSourcesEvenWhenTheyAreToBeDeleted) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"whole", "progress 60\nprogress nan\nerror -3", "its error -3."},
        {"whole", "write done\nerror 5\nprogress 100\nerror 6", "its error 5."},
        {"whole", "write \nprogress 100", "wrote no destination"},
        {"whole", "result -100", "did not start"},
        {"failing-factory", "write done\nprogress 100", "did not start"},
        {"no-stop", "error 9\nhold", "its error 9."},
        {"whole", "progress 100", "wrote no destination"}, // only an earlier run did
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
        mFolder.write("out.mp4", "older");
    }
    EXPECT_THAT(filesLeft(), ElementsAre("a.mkv", "out.mp4"));
}

TEST_F(Endings, CtrlCStopsWithinASecondAndLeavesTheSourcesAlone) {
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    const auto interrupt = [this](const std::string& variant, const std::string& script) {
        SCOPED_TRACE(variant + ": " + script);
        const std::string source = mFolder.write("a.mkv", script);
        expectStopped(command({"--engine-folder", fakeEngineFolder(variant), "--delete-sources",
                               source, mDestination}),
                      "20 %");
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
