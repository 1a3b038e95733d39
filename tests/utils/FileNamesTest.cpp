#include "platform/KnownFolders.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

#include <regex>

namespace tarn {
namespace {

const std::string kIdentifier = "0123abCD-4567-89ef-AbCd-0123456789ab";
const char* const kIdentifierPattern =
    "_(\\{){0,1}[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}"
    "[0-9]{0,2}(\\(([0-9)]){0,2}\\))?(\\}){0,1}";

TEST(FileNames, ReplacesExactlyTheCharactersThatWindowsForbids) {
    EXPECT_EQ(fileNames::sanitize("a\\b/c:d*e?f\"g<h>i|j"), "a_b_c_d_e_f_g_h_i_j");
    EXPECT_EQ(fileNames::sanitize("Füße ’ (1).mp4"), "Füße ’ (1).mp4");
}

TEST(FileNames, RemovesIdentifiersAsTheirPatternMatches) {
    const std::regex pattern(kIdentifierPattern);
    for (const std::string& name :
         {"call_" + kIdentifier + ".mp4", "call_{" + kIdentifier + "}.mp4",
          "call_" + kIdentifier + "12.mp4", "call_" + kIdentifier + "123.mp4",
          "call_{" + kIdentifier + "7(4)}.mp4", "call_" + kIdentifier + "(12).mp4",
          "call_" + kIdentifier + "(123).mp4", "call_" + kIdentifier + "()))x",
          "call_" + kIdentifier + "()", "call_" + kIdentifier + "(", "call_" + kIdentifier + "(9)9",
          "a_" + kIdentifier + "_" + kIdentifier, "_" + kIdentifier, "call" + kIdentifier,
          "__" + kIdentifier + "}}", "call_" + kIdentifier.substr(1), "call_{{" + kIdentifier,
          "call_" + kIdentifier.substr(0, 20) + "x" + kIdentifier.substr(21), std::string()}) {
        EXPECT_EQ(fileNames::withoutIdentifiers(name), std::regex_replace(name, pattern, ""))
            << name;
    }
}

TEST(FileNames, RemovesIdentifiersFromAVeryLongName) {
    std::string name;
    std::string expected;
    for (int i = 0; i < 20'000; ++i) {
        name += "x_" + kIdentifier + "_";
        expected += "x_";
    }
    EXPECT_EQ(fileNames::withoutIdentifiers(name), expected);
}

TEST(FileNames, SplitsPathsAtEitherSeparator) {
    const FileUtils files{};
    EXPECT_EQ(files.directoryOfPath("C:/x\\y/z.mp4"), "C:/x\\y/");
    EXPECT_EQ(files.fileNameOfPath("C:/x\\y/z.mp4"), "z.mp4");
    EXPECT_EQ(files.directoryOfPath("C:/x/y\\z.mp4"), "C:/x/y\\");
    EXPECT_EQ(files.directoryOfPath("z.mp4"), "");
    EXPECT_EQ(files.fileNameOfPath("z.mp4"), "z.mp4");
    EXPECT_EQ(files.fileNameOfPath("folder/"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/.c"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/c"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/c."), ".");
    EXPECT_EQ(files.extensionOfPath("a.b/c.tar.gz"), ".gz");
}

TEST(FileNames, JoinsWithExactlyOneSeparator) {
    const std::string separator(1, platform::pathSeparator());
    for (const std::string& folder :
         {std::string("a"), "a" + separator, "a" + separator + separator}) {
        EXPECT_EQ(fileNames::join(folder, "b"), "a" + separator + "b");
        EXPECT_EQ(fileNames::join(folder, separator + "b"), "a" + separator + "b");
    }
    EXPECT_EQ(fileNames::join("", "b"), "b");
    EXPECT_EQ(fileNames::join(separator, "b"), separator + "b");
}

TEST(FileNames, FindsParentsUpToTheRoot) {
    const std::string s(1, platform::pathSeparator());
    const std::string root = s == "\\" ? "C:\\" : "/";
    EXPECT_EQ(fileNames::parentOf(root + "a" + s + s + "b" + s), root + "a");
    EXPECT_EQ(fileNames::parentOf(root + "a"), root);
    EXPECT_EQ(fileNames::parentOf(root), "");
    EXPECT_EQ(fileNames::parentOf("a"), "");
    EXPECT_EQ(fileNames::withoutTrailingSeparators(root + s), root);
}

} // namespace
} // namespace tarn
