#include "recordconverter/SourceList.h"

#include <gmock/gmock.h>

namespace recordconverter {
namespace {

TEST(SourceList, TakesOnePathOrATemplateWithANameForEachPart) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
        {"C:\\a:b.mp4", {"C:\\a:b.mp4"}},
        {"", {""}},
        {"C:\\rec\\part.dat|a:b", {"C:\\rec\\parta.dat", "C:\\rec\\partb.dat"}},
        {"/x.y/part.dat|1", {"/x.y/part1.dat"}},
        {"part|b:a", {"partb", "parta"}},
        {"part.|b.x:", {"partb.x", "part"}},
        {".dat|", {".dat"}},
        {"|a:b", {"a", "b"}},
        {"x|y|z", {}},
        {"||", {}},
    };
    for (const auto& [argument, paths] : cases) {
        EXPECT_EQ(expandSourceList(argument), paths) << argument;
    }
}

} // namespace
} // namespace recordconverter
