#include "launcher/SourceListEncoder.h"
#include "recordconverter/SourceList.h"

#include <gtest/gtest.h>

namespace launcher {

using Lists = std::vector<std::vector<std::string>>;

TEST(SourceListEncoder, WritesWhatTheExpansionReadsBackAndSplitsNoCharacterInTwo) {
    for (const auto& list : Lists{{"/rec/at 10:30.mkv"},
                                  {"C:\\rec\\a.dat", "C:\\rec\\b.dat"},
                                  {"/rec/at 10:30 a.mkv", "/rec/at 10:30 b.mkv"},
                                  {"/a.b/x", "/a.b/xy.z", "/a.b/"},
                                  {"/rec/same.mkv", "/rec/same.mkv"},
                                  {"..", "...", "...."}}) {
        const auto encoded = encodeSourceList(list);
        EXPECT_EQ(recordconverter::expandSourceList(encoded), list);
    }
    EXPECT_EQ(encodeSourceList({"/\xC3\xBC", "/\xC3\xB6"}), "/.|\xC3\xBC:\xC3\xB6");
}

} // namespace launcher
