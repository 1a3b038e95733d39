#include "logging/ControlCharacters.h"
#include "logging/LevelFilter.h"
#include "logging/LogStream.h"
#include "logging/Scrubber.h"
#include "logging/Timestamp.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using namespace RootLoggerLevel;

std::string scrubbed(const std::vector<std::string>& entries, std::string text) {
    Scrubber scrubber;
    for (const std::string& entry : entries) {
        scrubber.add(entry);
    }
    scrubber.scrub(text);
    return text;
}

/// Word for word what Scrubber promises to give, for entries that are not all asterisks.
std::string plainlyScrubbed(std::vector<std::string> entries, std::string text) {
    std::ranges::stable_sort(entries, std::ranges::greater(), &std::string::size);
    for (const std::string& entry : entries) {
        for (std::size_t at = text.find(entry); at != std::string::npos; at = text.find(entry)) {
            text.replace(at, entry.size(), "********");
        }
    }
    return text;
}

std::string randomText(std::mt19937& random, std::string_view letters, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += letters[random() % letters.size()];
    }
    return text;
}

TEST(Scrubber, PassesOverEntriesOfAsterisksAlone) {
    EXPECT_EQ(scrubbed({"***", "abc", "abc", "********"}, "**** abc"), "**** ********");
}

TEST(Scrubber, GivesWhatAPlainReplacementGives) {
    std::mt19937 random(4711); // NOLINT: the same texts in every run
    for (const std::string_view letters : {"ab", "ab*", "abc", "a*"}) {
        for (int round = 0; round < 4000; ++round) {
            // The order among entries of one length is open: one of each length here.
            std::vector<std::string> entries;
            for (std::size_t size = 3; size < 6; ++size) {
                const std::string entry = randomText(random, letters, size);
                if (random() % 3 != 0 && entry.find_first_not_of('*') != std::string::npos) {
                    entries.push_back(entry);
                }
            }
            const std::string text = randomText(random, letters, random() % 40);
            ASSERT_EQ(scrubbed(entries, text), plainlyScrubbed(entries, text))
                << ::testing::PrintToString(entries) << " in " << text;
        }
    }
}

TEST(ControlCharacters, AreWrittenOutAndOrdinaryTextIsKept) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"plain \t C:\\new\\readme", "plain \t C:\\new\\readme"},
        {"Grüße 你好 😀", "Grüße 你好 😀"},
        {"a\nb\r\nc", "a\\nb\\r\\nc"},
        {std::string("\0\x1b[31m\x7f", 7), "\\x00\\x1b[31m\\x7f"},
        {"\xC2\x85 \xE2\x80\xA8 \xE2\x80\xA9 \xC2\xA0", "\\u0085 \\u2028 \\u2029 \xC2\xA0"},
        {"\xFF \xC0\xAF \xED\xA0\x80 \xE2\x82", "\\xff \\xc0\\xaf \\xed\\xa0\\x80 \\xe2\\x82"},
    };
    for (const auto& [raw, expected] : cases) {
        std::string text = raw;
        escapeControlCharacters(text);
        EXPECT_EQ(text, expected);
    }
}

TEST(Timestamp, IsInWholeSecondsOfUniversalTime) {
    EXPECT_EQ(timestampText(1714555805), "2024-05-01T09:30:05Z");
    EXPECT_EQ(timestampText(951782400), "2000-02-29T00:00:00Z");
    EXPECT_EQ(timestampText(253402300800), "10000-01-01T00:00:00Z");
    EXPECT_EQ(timestampText(-1), "");
}

TEST(LevelFilter, PassesTheLevelsOfEachSetting) {
    struct Case {
        Level threshold;
        bool isPrivateEnabled;
        bool hasAllLevels;
        std::string enabled; ///< digits of the levels that pass
    };
    const std::vector<Case> cases{
        {Trace, false, false, "23457"},
        {Debug, false, false, "23457"},
        {Warn, false, false, "457"},
        {Error, true, false, "567"},
        {RootLoggerLevel::Test, true, false, "7"},
        {Private, true, false, "67"},
        {Error, false, true, "01234578"},
        {RootLoggerLevel::Test, true, true, "012345678"},
    };
    for (const Case& setting : cases) {
        LevelFilter filter;
        filter.setThreshold(setting.threshold);
        filter.setPrivateEnabled(setting.isPrivateEnabled);
        filter.setAllLevels(setting.hasAllLevels);
        std::string enabled;
        for (int level = 0; level <= (setting.hasAllLevels ? 8 : 7); ++level) {
            if (filter.isEnabled(static_cast<Level>(level))) {
                enabled += std::to_string(level);
            }
        }
        EXPECT_EQ(enabled, setting.enabled);
    }
}

TEST(LogStream, WritesWhatAStandardStreamWrites) {
    const int object = 0;
    const auto write = [&](auto& stream) -> auto& {
        stream << "text " << std::string("string ") << 'c' << true << false << -7 << 7U << ' '
               << INT64_MIN << ' ' << UINT64_MAX << ' ' << short{-3} << ' ' << 0.1 << ' ' << 1e20
               << ' ' << 1234567.0F << ' ' << static_cast<const void*>(&object);
        return stream;
    };
    std::ostringstream standard;
    LogStream ours;
    EXPECT_EQ(write(ours).text(), static_cast<std::ostringstream&>(write(standard)).str());
    EXPECT_EQ((LogStream() << static_cast<const char*>(nullptr)).text(), "(null)");
}

} // namespace
} // namespace tarn
