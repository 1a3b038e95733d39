#include "loader/AcceptedSigners.h"
#include "platform/Signature.h"
#include "platform/windows/PolicyFixture.h"

namespace tarn::platform {
namespace {

using loader::besideProgram;

std::optional<std::wstring> signerOf(const std::string& path) {
    return embeddedSignerName(toWide(path));
}

TEST(Signature, GivesTheSignersName) {
    EXPECT_EQ(signerOf(besideProgram("signed\\other.dll")), L"Somebody Else");
    EXPECT_EQ(signerOf(besideProgram("signed\\beyond-ascii.dll")), L"Größe 会議 Ltd");
    EXPECT_EQ(signerOf(besideProgram("signed\\accepted.dll")), loader::kAcceptedSigners[2]);
}

TEST(Signature, IsNoneOnWhatIsNotASignedLibrary) {
    const tarn::testing::TemporaryFolder folder;
    for (const std::string& path :
         {besideProgram("libraries\\neighbour.dll"), folder.write("empty.dll", ""),
          folder.write("text.dll", std::string(5000, 'M')), folder / "absent.dll", folder.path()}) {
        EXPECT_EQ(signerOf(path), std::nullopt) << path;
    }
    EXPECT_FALSE(canReadFileProperties(toWide(folder / "absent.dll")));
}

} // namespace
} // namespace tarn::platform
