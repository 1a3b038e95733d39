#include "launcher/Preflight.h"
#include "platform/Library.h"
#include "support/FakeLibraries.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <functional>

namespace launcher {
namespace {

using tarn::testing::fakeEngineFolder;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Optional;

const std::string kEngineName = tarn::platform::libraryFileName("mediaconverter");

class Preflight : public ::testing::Test {
protected:
    tarn::testing::TemporaryFolder folder;
    Job job{.sources = {folder.write("a \xC3\xBC.mkv", "x"), folder.write("b.mkv", "y")},
            .destination = folder / "out.mp4",
            .engineFolder = ""};
};

TEST_F(Preflight, NamesTheFileThatStandsInTheWayAndTheRemedy) {
    EXPECT_EQ(checkFiles(job), std::nullopt);
    folder.write("out.mp4", "an older one");
    EXPECT_EQ(checkFiles(job), std::nullopt);
    const std::string linked = folder / "linked.mp4";
    ASSERT_TRUE(tarn::FileUtils().hardLink(job.sources[1], linked));
    struct Case {
        std::function<void(Job&)> spoil;
        std::string name;
        std::string remedy;
    };
    const std::vector<Case> cases{
        {[&](Job& bad) { bad.sources[1] = folder / "gone.mkv"; }, "gone.mkv", "check the path"},
        {[&](Job& bad) { bad.sources[0] = folder.path(); }, folder.path(), "name the recording"},
        {[&](Job& bad) { bad.destination = bad.sources[1]; }, "b.mkv", "choose another name"},
        {[&](Job& bad) { bad.destination = linked; }, "linked.mp4", "choose another name"},
        {[&](Job& bad) { bad.destination = folder / "no/out.mp4"; }, "no", "make it first"},
        {[&](Job& bad) { bad.destination = folder.makeFolder("d.mp4"); }, "d.mp4", "is a folder"},
        {[&](Job& bad) { bad.destination = folder / "b2.mkv"; }, "b2.mkv", "must end in .mp4"},
    };
    for (const Case& one : cases) {
        Job bad = job;
        one.spoil(bad);
        EXPECT_THAT(checkFiles(bad), Optional(AllOf(HasSubstr(one.name), HasSubstr(one.remedy))));
    }
}

TEST_F(Preflight, TellsAnEngineFromWhatIsNone) {
    EXPECT_EQ(checkEngine(fakeEngineFolder("whole")), std::nullopt);
    const std::string text = folder.makeFolder("text");
    folder.write("text/" + kEngineName, "no library");
    const std::vector<std::pair<std::string, std::string>> cases{
        {folder / "gone", "gone"},
        {"relative", "relative"},
        {folder.path(), "There is no " + kEngineName},
        {fakeEngineFolder("no-factory"), "CreateMediaConverter"},
        {text, "can not be loaded"},
    };
    for (const auto& [place, told] : cases) {
        EXPECT_THAT(checkEngine(place),
                    Optional(AllOf(HasSubstr(told), HasSubstr("--engine-folder"))));
    }
}

} // namespace
} // namespace launcher
