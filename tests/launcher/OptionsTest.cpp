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

TEST(Options, SayWhatIsWrongWithACommandLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "No recording and no destination"},
        {{"a.mkv"}, "No destination is given after \"a.mkv\""},
        {{"--no-window=1", "a", "b"}, "\"--no-window=1\" is unknown"},
        {{"--theme", "pink", "a", "b"}, "--theme takes light or dark"},
        {{"a", "b", "--engine-folder"}, "--engine-folder takes the path"},
        {{"--engine-folder", "", "a", "b"}, "--engine-folder takes the path"},
        {{"a", ""}, "An empty text is no path"},
        {{"a\xFF", "b"}, "\"a\\xff\" is not valid UTF-8"},
    };
    for (const auto& [arguments, expected] : cases) {
        const CommandLine result = parseCommandLine(arguments);
        ASSERT_TRUE(std::holds_alternative<UsageError>(result)) << expected;
        EXPECT_THAT(std::get<UsageError>(result).sentence, ::testing::HasSubstr(expected));
    }
}

} // namespace
} // namespace launcher
