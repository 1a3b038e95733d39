#include "launcher/Options.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(Options, TakesSourcesAndThenTheDestinationWithTheSafeDefaults) {
    const auto options = std::get<Options>(parseCommandLine({"a.mkv", "-", "out.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a.mkv", "-"));
    EXPECT_EQ(options.destination, "out.mp4");
    EXPECT_EQ(options.engineFolder, "");
    EXPECT_TRUE(options.theme == Theme::Light && options.window && !options.deleteSources);
}

TEST(Options, TakesOptionsAnywhereBeforeTheirEnd) {
    const auto options = std::get<Options>(
        parseCommandLine({"--no-window", "a", "--theme", "dark", "--engine-folder=x=y",
                          "--delete-sources", "--", "--help", "-o.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a", "--help"));
    EXPECT_EQ(options.destination, "-o.mp4");
    EXPECT_EQ(options.engineFolder, "x=y");
    EXPECT_TRUE(options.theme == Theme::Dark && !options.window && options.deleteSources);
    EXPECT_TRUE(std::holds_alternative<HelpWanted>(parseCommandLine({"a", "--help", "--bad"})));
}

TEST(Options, SaysWhatIsWrongWithACommandLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "No recording and no destination"},
        {{"a.mkv"}, "No destination is given after \"a.mkv\""},
        {{"--fast", "a", "b"}, "\"--fast\" is unknown"},
        {{"--no-window=1", "a", "b"}, "\"--no-window=1\" is unknown"},
        {{"--theme", "pink", "a", "b"}, "--theme takes light or dark"},
        {{"a", "b", "--theme"}, "--theme takes light or dark"},
        {{"a", "b", "--engine-folder"}, "--engine-folder takes the path"},
        {{"--engine-folder", "", "a", "b"}, "--engine-folder takes the path"},
        {{"a", ""}, "An empty text is no path"},
        {{"a\xFF", "b"}, "\"a\xEF\xBF\xBD\" is not valid UTF-8"},
        {{"--x\n\x1B[2J"}, "\"--x??[2J\" is unknown"},
        {{std::string(32000, 'x')}, "No destination"},
    };
    for (const auto& [arguments, expected] : cases) {
        const CommandLine result = parseCommandLine(arguments);
        ASSERT_TRUE(std::holds_alternative<UsageError>(result)) << expected;
        EXPECT_THAT(std::get<UsageError>(result).sentence, HasSubstr(expected));
    }
}

} // namespace
} // namespace launcher
