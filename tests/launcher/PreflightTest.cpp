#include "launcher/Preflight.h"
#include "platform/Library.h"
#include "support/FakeLibraries.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>

namespace launcher {
namespace {

using tarn::testing::fakeEngineFolder;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Optional;

TEST(Preflight, NamesTheFileThatStandsInTheWayAndTheRemedy) {
    const tarn::testing::TemporaryFolder folder;
    const std::string first = folder.write("a \xC3\xBC.mkv", "x");
    const std::string second = folder.write("b.mkv", "y");
    const std::string older = folder.write("out.mp4", "an older one");
    const std::string linked = folder / "linked.mp4";
    ASSERT_TRUE(tarn::FileUtils().hardLink(second, linked));
    const auto check = [&](const std::string& source, const std::string& destination,
                           bool overwrite = false) {
        return checkFiles({{first, source}, destination, "", overwrite});
    };
    EXPECT_EQ(check(second, folder / "new.mp4"), std::nullopt);
    EXPECT_EQ(check(second, older, true), std::nullopt);
    const std::vector<std::array<std::string, 4>> cases{
        {folder / "gone.mkv", older, "gone.mkv", "check the path"},
        {folder.path(), older, folder.path(), "name the recording"},
        {second, second, "b.mkv", "choose another name"},
        {second, linked, "linked.mp4", "choose another name"},
        {second, folder / "no/out.mp4", "no", "make it first"},
        {second, folder.makeFolder("d.mp4"), "d.mp4", "is a folder"},
        {second, folder / "b2.mkv", "b2.mkv", "must end in .mp4"},
        {second, older, "out.mp4", "replace it with --overwrite"},
    };
    for (const auto& [source, destination, name, remedy] : cases) {
        EXPECT_THAT(check(source, destination),
                    Optional(AllOf(HasSubstr(name), HasSubstr(remedy))));
    }
    namespace fs = std::filesystem;
    fs::permissions(fs::path(older), fs::perms::owner_read | fs::perms::group_read);
    EXPECT_THAT(check(second, older, true), Optional(HasSubstr("is write-protected")));
    fs::permissions(fs::path(older), fs::perms::owner_all);
}

TEST(Preflight, TellsAnEngineFromWhatIsNone) {
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    const tarn::testing::TemporaryFolder empty;
    const tarn::testing::TemporaryFolder text;
    text.write(name, "no library");
    EXPECT_EQ(checkEngine(fakeEngineFolder("whole")), std::nullopt);
    const std::vector<std::array<std::string, 2>> cases{
        {empty / "gone", "gone"},
        {"relative", "relative"},
        {empty.path(), "There is no " + name},
        {fakeEngineFolder("no-factory"), "CreateMediaConverter"},
        {text.path(), "cannot be loaded"},
        {"", "Where this program lies cannot be found"},
    };
    for (const auto& [place, told] : cases) {
        EXPECT_THAT(checkEngine(place),
                    Optional(AllOf(HasSubstr(told), HasSubstr("--engine-folder"))));
    }
}

} // namespace
} // namespace launcher
