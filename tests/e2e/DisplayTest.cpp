// Only Linux can be without a display.

#include "e2e/LauncherFixture.h"
#include "support/FakeLibraries.h"

#include <gmock/gmock.h>

namespace e2e {
namespace {

using ::testing::HasSubstr;

class Display : public LauncherFixture {};

TEST_F(Display, WithoutOneTheLauncherSaysSoAndNamesTheTerminal) {
    const std::string source = mFolder.write("a.mkv", "x");
    for (const std::string x11 : {"", ":987", "unix:987.0", "nonsense"}) {
        for (const std::string wayland : {"", "no-such-socket", "/no/such/socket"}) {
            SCOPED_TRACE(x11 + " " + wayland);
            Process::Start start =
                windowCommand({"--engine-folder", tarn::testing::fakeEngineFolder("whole"), source,
                               mDestination});
            for (const auto& variable : {std::pair<std::string, std::string>{"DISPLAY", x11},
                                         {"WAYLAND_DISPLAY", wayland},
                                         {"QT_QPA_PLATFORM", ""}}) {
                start.environment.push_back(variable);
            }
            const ProcessResult result = tarn::testing::runProcess(start);
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.errors,
                      "record-converter: There is no display to show the window "
                      "on: convert with --no-window.\n");
        }
    }
}

} // namespace
} // namespace e2e
