#include "launcher/SourceListEncoder.h"
#include "recordconverter/SourceList.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

TEST(SourceListEncoder, WritesWhatTheExpansionReadsBack) {
    const std::vector<std::vector<std::string>> lists{
        {"/rec/at 10:30.mkv"},
        {"C:\\rec\\a.dat", "C:\\rec\\b.dat"},
        {"/rec/at 10:30 a.mkv", "/rec/at 10:30 b.mkv", "/rec/at 10:30 c.mkv"},
        {"/a.b/x", "/a.b/xy.z", "/a.b/"},
        {"/rec/same.mkv", "/rec/same.mkv"},
        {"a", "b"},
        {"..", "...", "...."},
    };
    for (const auto& list : lists) {
        const auto encoded = encodeSourceList(list);
        ASSERT_TRUE(std::holds_alternative<std::string>(encoded)) << list.front();
        EXPECT_EQ(recordconverter::expandSourceList(std::get<std::string>(encoded)), list);
    }
    EXPECT_EQ(std::get<std::string>(encodeSourceList({"/\xC3\xBC", "/\xC3\xB6"})),
              "/.|\xC3\xBC:\xC3\xB6")
        << "splits no character in two";
}

TEST(SourceListEncoder, RefusesByNameWhatItCanNotWrite) {
    const std::vector<std::vector<std::string>> lists{
        {"/rec/a|b.mkv"},
        {"/rec/x.mkv", "/rec/a|:b.mkv"},
        {"/rec/x.mkv", "/rec/a:b.mkv"},
        {"C:\\x.mkv", "D:\\a.mkv"},
    };
    for (const auto& list : lists) {
        const auto encoded = encodeSourceList(list);
        ASSERT_TRUE(std::holds_alternative<NotExpressible>(encoded)) << list.back();
        EXPECT_THAT(std::get<NotExpressible>(encoded).sentence, ::testing::HasSubstr("rename it"));
    }
}

} // namespace
} // namespace launcher
