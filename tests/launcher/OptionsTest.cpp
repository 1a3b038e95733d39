#include "launcher/Options.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using ::testing::ElementsAre;

TEST(Options, HaveSafeDefaultsAndStandAnywhereBeforeTheirEnd) {
    auto options = std::get<Options>(parseCommandLine({"a.mkv", "-", "out.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a.mkv", "-"));
    EXPECT_EQ(options.destination, "out.mp4");
    EXPECT_EQ(options.engineFolder, "");
    EXPECT_TRUE(options.theme == Theme::Light && options.window && !options.overwrite &&
                !options.deleteSources);
    options = std::get<Options>(
        parseCommandLine({"--no-window", "a", "--theme", "dark", "--engine-folder=x=y",
                          "--delete-sources", "--overwrite", "--", "--help", "-o.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a", "--help"));
    EXPECT_EQ(options.destination, "-o.mp4");
    EXPECT_EQ(options.engineFolder, "x=y");
    EXPECT_TRUE(options.theme == Theme::Dark && !options.window && options.overwrite &&
                options.deleteSources);
    EXPECT_TRUE(std::holds_alternative<HelpWanted>(parseCommandLine({"a", "--help", "--bad"})));
}

} // namespace
} // namespace launcher
