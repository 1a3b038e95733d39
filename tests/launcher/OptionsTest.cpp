#include "launcher/RecordingNames.h"
#include "launcher/terminal/JsonLine.h"
#include "launcher/usage/Options.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

TEST(Options, HaveSafeDefaultsAndStandAnywhereBeforeTheirEnd) {
    auto options = std::get<Options>(parseCommandLine({"a.mkv", "-", "out.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a.mkv", "-"));
    EXPECT_EQ(options.destination, "out.mp4");
    EXPECT_EQ(options.engineFolder + options.quality, "");
    EXPECT_TRUE(options.theme == Theme::Desktop && options.window && !options.overwrite &&
                !options.deleteSources && !options.fastStart);
    options = std::get<Options>(parseCommandLine(
        {"--no-window", "a", "--theme", "dark", "--engine-folder=x=y", "--quality", "high",
         "--delete-sources", "--overwrite", "--fast-start", "--", "--help", "-o.mp4"}));
    EXPECT_THAT(options.sources, ElementsAre("a", "--help"));
    EXPECT_EQ(options.destination, "-o.mp4");
    EXPECT_EQ(options.engineFolder + options.quality, "x=yhigh");
    EXPECT_TRUE(options.theme == Theme::Dark && !options.window && options.overwrite &&
                options.deleteSources && options.fastStart);
    options = std::get<Options>(parseCommandLine({"a", "--each", "b", "--to=c"}));
    EXPECT_THAT(options.sources, ElementsAre("a", "b"));
    EXPECT_EQ(options.destination + options.folder, "c");
    EXPECT_FALSE(options.window);
    options = std::get<Options>(parseCommandLine({"--json", "a"}));
    EXPECT_THAT(options.sources, ElementsAre("a"));
    EXPECT_TRUE(options.destination.empty() && !options.window);
    EXPECT_TRUE(std::holds_alternative<HelpWanted>(parseCommandLine({"a", "--help", "--bad"})));
    EXPECT_EQ(std::get<ExplanationWanted>(parseCommandLine({"--explain", "-100"})).number, "-100");
}

TEST(Options, AreRefusedInWords) {
    const std::vector<std::pair<std::vector<std::string>, const char*>> cases = {
        {{}, "No recording"},
        {{"--each"}, "No recording"},
        {{"a", "", "b.mp4"}, "An empty text"},
        {{"--to", "b", "a"}, "The option --to goes with --each"},
        {{"--each", "a", "--to"}, "The option --to takes the path of a folder."},
        {{"--each=1", "a"}, "The option \"--each=1\" is unknown."},
        {{"--quality", "best", "a"}, "The option --quality takes small, normal or high."},
        {{"--quality", "small|normal", "a"}, "The option --quality takes"},
        {{"a", "--theme="}, "The option --theme takes light or dark."},
        {{"--explain"}, "The option --explain takes a number."},
        {{"\xFF"}, "The argument \"\\xff\" is not valid"},
    };
    for (const auto& [arguments, sentence] : cases) {
        const CommandLine commandLine = parseCommandLine(arguments);
        const auto* error = std::get_if<UsageError>(&commandLine);
        ASSERT_NE(error, nullptr) << sentence;
        EXPECT_THAT(error->sentence, StartsWith(sentence));
        EXPECT_FALSE(error->json);
    }
    EXPECT_TRUE(std::get<UsageError>(parseCommandLine({"--quick", "--json"})).json);
}

TEST(RecordingNames, TakeAnExtensionOffAndNothingElse) {
    const tarn::testing::TemporaryFolder folder;
    for (const auto& [source, destination] : {
             std::pair{"meeting.mkv", "meeting.mp4"},
             {"a.b.WEBM", "a.b.mp4"},
             {"Meeting 2026.11.22", "Meeting 2026.11.22.mp4"},
             {"meeting.Mp4", "meeting (converted).mp4"},
             {".mkv", ".mkv.mp4"},
         }) {
        EXPECT_EQ(destinationFor(folder / source, ""), folder / destination);
        EXPECT_EQ(destinationFor(source, folder.path()), folder / destination);
    }
    using namespace std::string_literals;
    for (const auto& [name, content, isOne] : {
             std::tuple{"broken.mkv", ""s, true},
             {"notes.txt", "RIFF"s, false},
             {"a", "RIFF\0\0\0\0WEBP"s, false},
             {"b", "RIFF\0\0\0\0WAVEfmt "s, true},
             {"c",
              "\0\0\0\x20"s
              "ftypheic",
              false},
             {"d",
              "\0\0\0\x20"s
              "ftypisom",
              true},
             {"e", "G"s, false},
             {"f", "G" + std::string(187, '\0') + "G", true},
         }) {
        EXPECT_EQ(isRecording(folder.write(name, content)), isOne) << name;
    }
    EXPECT_FALSE(isRecording(folder.path()));
}

TEST(JsonLine, HoldsAnyText) {
    EXPECT_EQ(jsonText("a\"\\\n\x1B\xE2\x80\xAE\xC3\xBC\xFF\xF0\x9F\x98\x80"),
              "\"a\\\"\\\\\\u000a\\u001b\\u202e\xC3\xBC\\udcff\xF0\x9F\x98\x80\"");
}

} // namespace
} // namespace launcher
