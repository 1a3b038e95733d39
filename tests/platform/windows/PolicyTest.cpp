// The side-loading policy on the real registry, real signatures and real loads, in a program that
// is not signed itself.
#include "platform/windows/PolicyFixture.h"

namespace tarn::loader {
namespace {

using ::testing::ElementsAre;
using InstallPaths = PolicyFixture;
using UnsignedProgram = PolicyFixture;

TEST_F(InstallPaths, AreReadInTheOrderOfUserMachineAndTheViews) {
    const InstallLocation location(machinePolicySources());
    install(HKEY_LOCAL_MACHINE, "C:\\32", L"Software\\WOW6432Node\\Quorell Tarn Native");
    EXPECT_EQ(location.getInstallPath(true), platform::toWide(mInstalled.path()));
    RegDeleteTreeW(HKEY_CURRENT_USER, kInstallKey);
    EXPECT_EQ(location.getInstallPath(true), L"C:\\32");
    install(HKEY_LOCAL_MACHINE, "C:\\Machine");
    EXPECT_EQ(location.getInstallPath(true), L"C:\\Machine");
    install(HKEY_CURRENT_USER, "C:\\User");
    EXPECT_EQ(location.getInstallPath(false), L"C:\\Machine");
    const std::wstring launcher =
        platform::toWide(platform::localApplicationDataFolder()) + L"\\QuorellTarnLauncher\\";
    EXPECT_THAT(location.getInstallFolders(),
                ::testing::UnorderedElementsAre(L"C:\\Machine", L"C:\\User", launcher));
    install(HKEY_LOCAL_MACHINE, "C:\\Machine\\..\\Other");
    install(HKEY_CURRENT_USER, "");
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(launcher));
}

TEST_F(UnsignedProgram, LeavesTheProtectionOffWhateverThePolicySays) {
    demandProtection();
    const auto& policy = SideLoadingPolicy::ofProcess();
    EXPECT_FALSE(policy.isSideLoadingProtectionEnabled());
    place(L"libraries\\neighbour.dll", mInstalled.path());
    EXPECT_TRUE(loads(mInstalled.path()));
    // While it is off, the program's own folder counts as an install folder.
    EXPECT_TRUE(policy.isInInstallFolder(besideProgram(L"any.dll")));
    EXPECT_FALSE(policy.hasAcceptedSignature(platform::toWide(platform::programFile()), true));
}

TEST_F(UnsignedProgram, KnowsAcceptedSignatures) {
    const auto& policy = SideLoadingPolicy::ofProcess();
    const bool accepted = policy.hasAcceptedSignature(besideProgram(L"signed\\accepted.dll"), true);
    EXPECT_EQ(accepted,
              FileUtils().exists(platform::toUtf8(besideProgram(L"signed\\accepted.dll"))));
    for (const std::wstring name :
         {L"capitals.dll", L"other.dll", L"beyond-ascii.dll", L"absent.dll"}) {
        EXPECT_FALSE(policy.hasAcceptedSignature(besideProgram(L"signed\\" + name), true));
        EXPECT_FALSE(policy.hasAcceptedSignature(besideProgram(L"signed\\" + name), false));
    }
}

} // namespace
} // namespace tarn::loader
