// The side-loading policy in a program that carries an accepted signature: here it can be on.
#include "platform/windows/PolicyFixture.h"

#include <algorithm>

namespace tarn::loader {
namespace {

using SignedProgram = PolicyFixture;

bool isMarked() {
    return GetEnvironmentVariableW(L"RECORD_CONVERTER_TEST_LIBRARY", nullptr, 0) != 0;
}

TEST_F(SignedProgram, LoadsOnlyALibraryOfAnAcceptedSigner) {
    demandProtection();
    for (const char* name : {"signed\\other.dll", "signed\\capitals.dll",
                             "signed\\beyond-ascii.dll", "libraries\\neighbour.dll"}) {
        EXPECT_FALSE(loads(name, mInstalled.path())) << name;
        EXPECT_THAT(mLog->lines().back(), "<Error> Failed to load neighbour.dll, errorCode: 126");
        EXPECT_EQ(safeLoadLibrary(platform::toWide(mInstalled / "neighbour.dll")), nullptr);
    }
    EXPECT_FALSE(isMarked()) << "code of a refused library ran";
    EXPECT_TRUE(loads("signed\\accepted.dll", mInstalled.path()));
    EXPECT_THAT(mLog->lines().back(), "<Debug> Loaded neighbour.dll with altered paths");
    EXPECT_TRUE(isMarked());
}

TEST_F(SignedProgram, TakesNoOtherSpellingOfAPathForAnotherPlace) {
    demandProtection();
    loads("signed\\other.dll", mInstalled.path());
    const std::wstring path = platform::toWide(mInstalled / "neighbour.dll");
    std::wstring slashes = path;
    std::ranges::replace(slashes, L'\\', L'/');
    const std::wstring folder = platform::toWide(mInstalled.path());
    for (const std::wstring& spelling :
         {path, slashes, L"\\\\?\\" + path, folder + L"\\\\neighbour.dll",
          folder + L"\\.\\neighbour.dll", folder + L"\\x\\..\\neighbour.dll"}) {
        EXPECT_EQ(safeLoadLibrary(spelling), nullptr) << platform::toUtf8(spelling);
        EXPECT_EQ(platform::lastError(), DWORD{ERROR_ACCESS_DISABLED_BY_POLICY});
    }
    EXPECT_FALSE(isMarked()) << "code of a refused library ran";
}

TEST_F(SignedProgram, RefusesALibraryWhoseBytesAreNotThoseThatWereSigned) {
    demandProtection();
    for (const char* name : {"signed\\changed.dll", "signed\\borrowed.dll"}) {
        EXPECT_FALSE(loads(name, mInstalled.path())) << name;
    }
    EXPECT_FALSE(isMarked());
}

TEST_F(SignedProgram, ChecksWhatALibraryBringsAlong) {
    demandProtection();
    const FileUtils files;
    const std::string plugin = mInstalled / "plugin.dll";
    EXPECT_TRUE(files.copyFile(besideProgram("signed\\plugin.dll"), plugin));
    for (const auto& [neighbour, isAccepted] :
         {std::pair{"libraries\\neighbour.dll", false}, {"signed\\accepted.dll", true}}) {
        EXPECT_TRUE(files.copyFile(besideProgram(neighbour), mInstalled / "neighbour.dll"));
        EXPECT_EQ(safeLoadLibrary(platform::toWide(plugin)) != nullptr, isAccepted) << neighbour;
        EXPECT_EQ(isMarked(), isAccepted);
    }
}

TEST_F(SignedProgram, LoadsAnythingFromElsewhere) {
    demandProtection();
    const auto& policy = SideLoadingPolicy::ofProcess();
    EXPECT_TRUE(policy.isSideLoadingProtectionEnabled());
    EXPECT_TRUE(loads("signed\\other.dll", mElsewhere.path()));
    // The state is kept: taking the policy away changes nothing for this process.
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kPolicyKey);
    EXPECT_TRUE(policy.isSideLoadingProtectionEnabled());
    EXPECT_FALSE(policy.isInInstallFolder(platform::toWide(platform::programFile())))
        << "the program's own folder counts only while the protection is off";
}

} // namespace
} // namespace tarn::loader
