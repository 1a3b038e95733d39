#include "logging/ControlCharacters.h"
#include "logging/Scrubber.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

// The fuzzing program compares it with a plain reference.
TEST(Scrubber, MasksLongestEntriesFirstAndEndsThoughAMaskIsPartOfAnEntry) {
    Scrubber scrubber;
    for (int number = 0; number < 40; ++number) { // more than one set of them holds
        scrubber.add("one of many longer entries " + std::to_string(number));
    }
    for (const char* entry : {"secret", "secret-token", "***", "a*b", "x**"}) {
        EXPECT_TRUE(scrubber.add(entry));
        EXPECT_FALSE(scrubber.add(entry));
    }
    for (const auto& [text, expected] :
         Texts{{"x secret-token secretsecret y", "x ******** **************** y"},
               {"**** aa*bb xsecret", "**** a********b **************"}}) {
        std::string scrubbed = text;
        scrubber.scrub(scrubbed);
        EXPECT_EQ(scrubbed, expected);
    }
    for (const bool ignoresCase : {false, true}) {
        Scrubber other(ignoresCase);
        EXPECT_TRUE(other.add("C:\\Users\\Jörg"));
        EXPECT_EQ(other.add("c:\\users\\Jörg"), !ignoresCase);
        std::string text = "C:\\Users\\Jörg C:\\USERS\\JöRG c:\\users\\JÖRG";
        other.scrub(text);
        EXPECT_EQ(text, ignoresCase ? "******** ******** c:\\users\\JÖRG"
                                    : "******** C:\\USERS\\JöRG c:\\users\\JÖRG");
    }
}

TEST(ControlCharacters, AreWrittenOutAndOrdinaryTextIsKept) {
    for (const auto& [raw, expected] : Texts{
             {"plain \t C:\\new\\readme", "plain \t C:\\new\\readme"},
             {"Grüße 你好 😀", "Grüße 你好 😀"},
             {"a\nb\r\nc", "a\\nb\\r\\nc"},
             {std::string("\0\x1b[31m\x7f", 7), "\\x00\\x1b[31m\\x7f"},
             {"\xC2\x85 \xE2\x80\xA8 \xE2\x80\xA9 \xC2\xA0", "\\u0085 \\u2028 \\u2029 \xC2\xA0"},
             {"\xFF \xC0\xAF \xED\xA0\x80 \xE2\x82", "\\xff \\xc0\\xaf \\xed\\xa0\\x80 \\xe2\\x82"},
         }) {
        std::string text = raw;
        escapeControlCharacters(text);
        EXPECT_EQ(text, expected);
    }
}

} // namespace
} // namespace tarn
