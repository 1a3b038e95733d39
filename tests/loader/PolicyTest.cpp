#include "FakePolicySources.h"
#include "loader/AcceptedSigners.h"
#include "loader/ClientFolders.h"
#include "loader/InstallLocation.h"
#include "loader/PathRules.h"
#include "loader/SideLoadingPolicy.h"
#include "platform/KnownFolders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace tarn::loader {
namespace {

using platform::RegistryRoot;
using platform::RegistryView;
using ::testing::ElementsAre;
using testing::FakePolicySources;
using Place = FakePolicySources::Place;

const std::wstring kAccepted(kAcceptedSigners[3]);
const Place kUser{RegistryRoot::CurrentUser, RegistryView::Default,
                  L"Software\\Quorell Tarn Native"};
const Place kMachine{RegistryRoot::LocalMachine, RegistryView::Default,
                     L"Software\\Quorell Tarn Native"};
const Place kMachine32{RegistryRoot::LocalMachine, RegistryView::Default,
                       L"Software\\WOW6432Node\\Quorell Tarn Native"};
const Place kMachine64{RegistryRoot::LocalMachine, RegistryView::Native64,
                       L"Software\\Quorell Tarn Native"};
const std::wstring kLauncherFolder = L"C:\\Users\\u\\AppData\\Local\\QuorellTarnLauncher\\";

TEST(PathRules, TakeAbsoluteDrivePathsWithoutForbiddenParts) {
    for (const wchar_t* path : {L"C:\\", L"z:\\a", L"C:\\a.b\\c d\\ü.dll", L"C:\\a:b"}) {
        EXPECT_TRUE(isAbsoluteDrivePath(path)) << platform::toUtf8(path);
    }
    for (const wchar_t* path :
         {L"", L"C:", L"C:a", L"C:/a", L"1:\\a", L"\\\\server\\x", L"/usr/lib", L"a\\b",
          L"C:\\a\\..\\b", L"C:\\a/b", L"C:\\a<b", L"C:\\a>b", L"C:\\a\"b", L"C:\\a|b", L"C:\\a?",
          L"C:\\*.dll", L"\\\\?\\C:\\a", L"\u00C4:\\a"}) {
        EXPECT_FALSE(isAbsoluteDrivePath(path)) << platform::toUtf8(path);
    }
    EXPECT_EQ(parentFolder(L"C:\\a\\b.dll"), L"C:\\a\\");
    EXPECT_EQ(parentFolder(L"b.dll"), L"");
}

TEST(InstallLocation, AsksInTheOrderOfThePreference) {
    FakePolicySources machine;
    const InstallLocation location(machine);
    EXPECT_EQ(location.getInstallPath(true), L"");
    for (const auto& [place, path, userFirst] :
         {std::tuple{kMachine64, L"C:\\64", true}, std::tuple{kMachine32, L"C:\\32", false},
          std::tuple{kUser, L"C:\\User", false}, std::tuple{kMachine, L"C:\\Machine", false}}) {
        machine.installPaths[place] = path;
        EXPECT_EQ(location.getInstallPath(userFirst), path);
    }
    EXPECT_EQ(location.getInstallPath(true), L"C:\\User");
    // A value that is there but empty ends the search too.
    machine.installPaths[kUser] = L"";
    EXPECT_EQ(location.getInstallPath(true), L"");
}

TEST(InstallLocation, KeepsAbsoluteDrivePathsSortedAndOnce) {
    FakePolicySources machine;
    const InstallLocation location(machine);
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(kLauncherFolder));
    machine.installPaths = {{kUser, L"D:\\Tarn"}, {kMachine, L"B:\\Tarn"}};
    EXPECT_THAT(location.getInstallFolders(),
                ElementsAre(L"B:\\Tarn", kLauncherFolder, L"D:\\Tarn"));
    machine.installPaths = {{kUser, L"D:\\Tarn"}, {kMachine, L"D:\\Tarn"}};
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(kLauncherFolder, L"D:\\Tarn"));
    machine.installPaths = {{kUser, L"D:\\Tarn\\..\\x"}, {kMachine, L"relative"}};
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(kLauncherFolder));
    machine.localData = "";
    EXPECT_TRUE(location.getInstallFolders().empty());
}

TEST(SideLoadingPolicy, IsOnOnlyForOneAndASignedProgram) {
    const auto isOn = [](const FakePolicySources& machine) {
        return SideLoadingPolicy(machine).isSideLoadingProtectionEnabled();
    };
    FakePolicySources machine;
    machine.protect(kAccepted);
    EXPECT_TRUE(isOn(machine));
    for (const std::optional<std::uint32_t> value : {std::optional<std::uint32_t>(), {0U}, {2U}}) {
        machine.policyValue = value;
        EXPECT_FALSE(isOn(machine));
    }
    machine.protect(L"Somebody Else");
    EXPECT_FALSE(isOn(machine));
    machine.protect(kAccepted);
    machine.unreadable.insert(platform::toWide(machine.program));
    EXPECT_FALSE(isOn(machine));
}

TEST(SideLoadingPolicy, ComparesInstallFoldersWithoutRegardToCase) {
    FakePolicySources machine;
    machine.protect(kAccepted);
    machine.installPaths[kUser] = L"D:\\Tarn";
    const SideLoadingPolicy policy(machine);
    for (const wchar_t* path :
         {L"d:\\tarn\\mediaconverter.dll", L"D:\\TARN\\bin\\x.dll", L"D:\\Tarnish\\x.dll",
          L"c:\\users\\U\\appdata\\LOCAL\\quorelltarnlauncher\\x.dll"}) {
        EXPECT_TRUE(policy.isInInstallFolder(path)) << platform::toUtf8(path);
    }
    for (const wchar_t* path : {L"D:\\Tar\\x.dll", L"D:\\x.dll", L"D:\\Tarn\\..\\x.dll",
                                L"D:\\Tarn/x.dll", L"/D:\\Tarn\\x.dll", L"D:\\Tool\\x.dll", L""}) {
        EXPECT_FALSE(policy.isInInstallFolder(path)) << platform::toUtf8(path);
    }
}

TEST(SideLoadingPolicy, AcceptsExactNamesOnly) {
    FakePolicySources machine;
    const SideLoadingPolicy policy(machine);
    const std::wstring path = L"D:\\Tarn\\x.dll";
    EXPECT_FALSE(policy.hasAcceptedSignature(path, false));
    for (const std::wstring_view accepted : kAcceptedSigners) {
        machine.signers[path] = accepted;
        EXPECT_TRUE(policy.hasAcceptedSignature(path, false));
    }
    std::wstring otherCase = kAccepted;
    otherCase[0] ^= 32;
    for (const std::wstring& name :
         {otherCase, kAccepted + L" ", kAccepted.substr(1), kAccepted + L'\0', std::wstring()}) {
        machine.signers[path] = name;
        EXPECT_FALSE(policy.hasAcceptedSignature(path, false)) << platform::toUtf8(name);
    }
    machine.signers[L""] = kAccepted;
    EXPECT_TRUE(policy.hasAcceptedSignature(L"", false));
    EXPECT_FALSE(policy.hasAcceptedSignature(L"", true));
}

TEST(ClientFolders, LieUnderTheLocalApplicationDataFolder) {
    const std::string separator(1, platform::pathSeparator());
    const std::string base = localApplicationDataFolder();
    EXPECT_EQ(base, platform::localApplicationDataFolder());
    EXPECT_EQ(launcherFolder(), base + separator + "QuorellTarnLauncher");
    EXPECT_EQ(dynamicDependenciesFolder(), launcherFolder() + separator + "dynamic_dependencies");
    EXPECT_EQ(applicationFolder(), base + separator + "QuorellTarn");
    setApplicationFolderOverride("elsewhere");
    EXPECT_EQ(applicationFolder(), "elsewhere");
    setApplicationFolderOverride("");
}

} // namespace
} // namespace tarn::loader
