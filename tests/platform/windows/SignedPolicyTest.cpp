// The side-loading policy in a program that carries an accepted signature: here it can be on.
#include "platform/windows/PolicyFixture.h"

namespace tarn::loader {
namespace {

using SignedProgram = PolicyFixture;

bool isMarked() {
    return GetEnvironmentVariableW(L"RECORD_CONVERTER_TEST_LIBRARY", nullptr, 0) != 0;
}

TEST_F(SignedProgram, RefusesALibraryOfAnotherSigner) {
    demandProtection();
    for (const wchar_t* name : {L"signed\\other.dll", L"signed\\capitals.dll",
                                L"signed\\beyond-ascii.dll", L"libraries\\neighbour.dll"}) {
        place(name, mInstalled.path());
        EXPECT_FALSE(loads(mInstalled.path())) << platform::toUtf8(name);
        EXPECT_THAT(mLog->lines().back(), "<Error> Failed to load neighbour.dll, errorCode: 126");
        EXPECT_EQ(safeLoadLibrary(platform::toWide(mInstalled / "neighbour.dll")), nullptr);
    }
    EXPECT_FALSE(isMarked()) << "code of a refused library ran";
}

TEST_F(SignedProgram, LoadsALibraryOfAnAcceptedSigner) {
    demandProtection();
    EXPECT_TRUE(SideLoadingPolicy::ofProcess().isSideLoadingProtectionEnabled());
    place(L"signed\\accepted.dll", mInstalled.path());
    EXPECT_TRUE(loads(mInstalled.path()));
    EXPECT_THAT(mLog->lines().back(), "<Debug> Loaded neighbour.dll with altered paths");
    EXPECT_TRUE(isMarked());
}

TEST_F(SignedProgram, LoadsAnythingFromElsewhere) {
    demandProtection();
    EXPECT_TRUE(SideLoadingPolicy::ofProcess().isSideLoadingProtectionEnabled());
    place(L"signed\\other.dll", mElsewhere.path());
    EXPECT_TRUE(loads(mElsewhere.path()));
    // The state is kept: taking the policy away changes nothing for this process.
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kPolicyKey);
    EXPECT_TRUE(SideLoadingPolicy::ofProcess().isSideLoadingProtectionEnabled());
    EXPECT_FALSE(SideLoadingPolicy::ofProcess().isInInstallFolder(besideProgram(L"any.dll")))
        << "the program's own folder counts only while the protection is off";
}

TEST_F(SignedProgram, StaysOffForAnyOtherValue) {
    demandProtection(2);
    EXPECT_FALSE(SideLoadingPolicy::ofProcess().isSideLoadingProtectionEnabled());
    place(L"signed\\other.dll", mInstalled.path());
    EXPECT_TRUE(loads(mInstalled.path()));
}

} // namespace
} // namespace tarn::loader
