// What the launcher hands to the product library, and what is left when that ends the process.

#include "e2e/LauncherFixture.h"

namespace e2e {
namespace {

class WindowMode : public LauncherFixture {
protected:
    std::string mSource = mFolder.write("a b.mkv", "x");
};

TEST_F(WindowMode, HandsOverTheClientsArgumentsAndASecondNameOfASourceThatIsToStay) {
    ProcessResult result =
        runProcess(showCommand("delete", {"--theme", "dark", mSource, mDestination}));
    std::erase(result.output, '\r');
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("record-converter"),
                      HasSubstr("1:" + fakeEngineFolder("whole") + "\n2:\n3:" + mFolder.path()),
                      HasSubstr("4:" + mDestination + "\n5:2\nended\nsource there\n")));
    EXPECT_THAT(filesLeft(), ElementsAre("a b.mkv"));
    EXPECT_EQ(readFile(mSource), "x");

    result = runProcess(showCommand("delete", {"--delete-sources", mSource, mDestination}));
    std::erase(result.output, '\r');
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("3:" + mSource + "\n4:" + mDestination + "\n5:1\n"));
    EXPECT_THAT(filesLeft(), ElementsAre());
}

TEST_F(WindowMode, LeavesNoSecondNamesHoweverItEnds) {
    const std::pair<std::string, int> cases[] = {{"exit", 0}, {"return 0", 0}, {"return -1", 1}};
    for (const auto& [order, status] : cases) {
        const std::string other = mFolder.write("b.mkv", "y");
        EXPECT_EQ(runProcess(showCommand(order, {mSource, other, mDestination})).status, status);
        EXPECT_THAT(filesLeft(), ElementsAre("a b.mkv", "b.mkv")) << order;
    }
    if (!Process::canInterrupt()) {
        GTEST_SKIP() << "there is no console to interrupt a program on";
    }
    Process process(showCommand("hold", {mSource, mDestination}));
    ASSERT_TRUE(process.waitForOutput("source there"));
    process.interrupt();
    EXPECT_EQ(process.wait(), 130);
    EXPECT_THAT(filesLeft(), ElementsAre("a b.mkv", "b.mkv"));
}

TEST_F(WindowMode, RefusesAMissingSourceAndAFolderWithoutAWindow) {
    const std::pair<std::string, std::string> cases[] = {{"gone.mkv", "There is no recording"},
                                                         {mSource, "There is no window"}};
    for (const auto& [source, told] : cases) {
        const ProcessResult result =
            runProcess(showCommand("exit", {source, mDestination}, "no-stop"));
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.errors, HasSubstr(told));
        EXPECT_EQ(result.output, "");
    }
}

} // namespace
} // namespace e2e
