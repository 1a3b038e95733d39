// What only Linux has: runs without a display, names with a bar.

#include "e2e/LauncherFixture.h"
#include "support/FakeLibraries.h"

#include <gmock/gmock.h>

namespace e2e {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class LinuxLauncher : public LauncherFixture {};

TEST_F(LinuxLauncher, SaysThatThereIsNoDisplayAndNamesTheTerminal) {
    const std::string source = mFolder.write("a.mkv", "x");
    const std::vector<std::pair<std::string, std::string>> displays{
        {"", ""}, {":987", "no-such-socket"}, {"unix:987.0", "/no/such/socket"}, {"nonsense", ""}};
    for (const auto& [x11, wayland] : displays) {
        SCOPED_TRACE(x11 + " " + wayland);
        Process::Start start = windowCommand(
            {"--engine-folder", tarn::testing::fakeEngineFolder("whole"), source, mDestination});
        start.environment.insert(
            start.environment.end(),
            {{"DISPLAY", x11}, {"WAYLAND_DISPLAY", wayland}, {"QT_QPA_PLATFORM", ""}});
        const ProcessResult result = tarn::testing::runProcess(start);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors,
                  "record-converter: There is no display to show the window on: "
                  "convert with --no-window.\n");
    }
}

TEST_F(LinuxLauncher, LendsTheWindowAPlainNameForOneThatItCanNotTake) {
    const std::string odd = mFolder.write("a|b.mkv", "x");
    const std::vector<std::string> arguments{
        "--engine-folder", tarn::testing::fakeEngineFolder("whole"), odd, mDestination};
    Process::Start start = windowCommand(arguments);
    start.environment.emplace_back("QT_QPA_PLATFORM", "offscreen");
    EXPECT_EQ(tarn::testing::runProcess(start).status, 0);
    start.command.insert(start.command.begin() + 1, "--delete-sources");
    const ProcessResult result = tarn::testing::runProcess(start);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, AllOf(HasSubstr("a|b.mkv"), HasSubstr("--no-window")));
    EXPECT_TRUE(exists(odd));
}

} // namespace
} // namespace e2e
