#include "recordconverter/SourceList.h"

#include <gmock/gmock.h>

namespace recordconverter {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SourceList, APlainPathIsItself) {
    EXPECT_THAT(expandSourceList("file.mp4"), ElementsAre("file.mp4"));
    EXPECT_THAT(expandSourceList("C:\\a:b.mp4"), ElementsAre("C:\\a:b.mp4"));
    EXPECT_THAT(expandSourceList(""), ElementsAre(""));
}

TEST(SourceList, ATemplateTakesEachNameBeforeItsExtension) {
    EXPECT_THAT(expandSourceList("C:\\rec\\part.dat|a:b"),
                ElementsAre("C:\\rec\\parta.dat", "C:\\rec\\partb.dat"));
    EXPECT_THAT(expandSourceList("/x.y/part.dat|1"), ElementsAre("/x.y/part1.dat"));
    EXPECT_THAT(expandSourceList("part|b:a"), ElementsAre("partb", "parta"));
    EXPECT_THAT(expandSourceList("part.|b.x:"), ElementsAre("partb.x", "part"));
    EXPECT_THAT(expandSourceList(".dat|"), ElementsAre(".dat"));
    EXPECT_THAT(expandSourceList("|a:b"), ElementsAre("a", "b"));
}

TEST(SourceList, ThreePartsAreNoList) {
    EXPECT_THAT(expandSourceList("x|y|z"), IsEmpty());
    EXPECT_THAT(expandSourceList("||"), IsEmpty());
}

} // namespace
} // namespace recordconverter
