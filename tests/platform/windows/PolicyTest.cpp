// The side-loading policy on the real registry, real signatures and real loads, in a program that
// is not signed itself.
#include "platform/windows/PolicyFixture.h"

namespace tarn::loader {
namespace {

using InstallPaths = PolicyFixture;
using UnsignedProgram = PolicyFixture;

TEST_F(InstallPaths, AreReadFromEachRootAndView) {
    const InstallLocation location(machinePolicySources());
    install(HKEY_LOCAL_MACHINE, "C:\\32", L"Software\\WOW6432Node\\Quorell Tarn Native");
    EXPECT_EQ(location.getInstallPath(true), platform::toWide(mInstalled.path()));
    RegDeleteTreeW(HKEY_CURRENT_USER, kInstallKey);
    EXPECT_EQ(location.getInstallPath(true), L"C:\\32");
    install(HKEY_LOCAL_MACHINE, "C:\\Machine");
    EXPECT_EQ(location.getInstallPath(true), L"C:\\Machine");
    EXPECT_EQ(machinePolicySources().registryText(platform::RegistryRoot::LocalMachine,
                                                  platform::RegistryView::Native64, kInstallKey,
                                                  L"OriginalInstallPath"),
              L"C:\\Machine");
}

TEST_F(UnsignedProgram, LeavesTheProtectionOffWhateverThePolicySays) {
    demandProtection();
    const auto& policy = SideLoadingPolicy::ofProcess();
    EXPECT_FALSE(policy.isSideLoadingProtectionEnabled());
    EXPECT_TRUE(loads("libraries\\neighbour.dll", mInstalled.path()));
    // While it is off, the program's own folder counts as an install folder.
    const std::wstring program = platform::toWide(platform::programFile());
    EXPECT_TRUE(policy.isInInstallFolder(program));
    EXPECT_FALSE(policy.hasAcceptedSignature(program, true));
}

} // namespace
} // namespace tarn::loader
