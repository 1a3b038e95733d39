#include "platform/Text.h"
#include "platform/Utf8.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

TEST(Text, ReplacesWhatIsNotUtf8) {
    for (const std::string text :
         {"\x80", "\xC0\xAF", "\xC1\xBF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xFF", "\xC3", "\xE4\xBC", "\xF0\x9F\x98"}) {
        EXPECT_FALSE(isValidUtf8(text)) << ::testing::PrintToString(text);
        const std::string between = toUtf8(toWide("a" + text + "z"));
        EXPECT_TRUE(isValidUtf8(between));
        EXPECT_TRUE(between.starts_with("a\xEF\xBF\xBD") && between.ends_with("\xEF\xBF\xBDz"))
            << between;
    }
    const std::wstring lone{static_cast<wchar_t>(0xDC00), static_cast<wchar_t>(0xD800), L'z'};
    EXPECT_EQ(toUtf8(lone), "\xEF\xBF\xBD\xEF\xBF\xBDz");
}

} // namespace
} // namespace tarn::platform
