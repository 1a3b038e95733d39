// What only Linux has: runs without a display, names with a bar.

#include "e2e/LauncherFixture.h"

namespace e2e {
namespace {

class LinuxLauncher : public LauncherFixture {};

TEST_F(LinuxLauncher, SaysThatThereIsNoDisplayAndNamesTheTerminal) {
    const std::string source = mFolder.write("a.mkv", "x");
    const std::pair<std::string, std::string> displays[] = {
        {"", ""}, {":987", "no-such-socket"}, {"unix:987.0", "/no/such/socket"}, {"nonsense", ""}};
    for (const auto& [x11, wayland] : displays) {
        Process::Start start = showCommand("exit", {source, mDestination});
        start.environment.insert(
            start.environment.end(),
            {{"DISPLAY", x11}, {"WAYLAND_DISPLAY", wayland}, {"QT_QPA_PLATFORM", ""}});
        const ProcessResult result = runProcess(start);
        EXPECT_EQ(result.status, 2) << x11 << " " << wayland;
        EXPECT_THAT(result.errors, AllOf(HasSubstr("no display"), HasSubstr("--no-window")));
    }
}

TEST_F(LinuxLauncher, LendsTheWindowAPlainNameForOneThatItCanNotTake) {
    const std::string odd = mFolder.write("a|b.mkv", "x");
    EXPECT_EQ(runProcess(showCommand("exit", {odd, mDestination})).status, 0);
    const ProcessResult result =
        runProcess(showCommand("exit", {"--delete-sources", odd, mDestination}));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, AllOf(HasSubstr("a|b.mkv"), HasSubstr("--no-window")));
    EXPECT_TRUE(exists(odd));
}

} // namespace
} // namespace e2e
