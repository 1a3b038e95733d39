#include "loader/AcceptedSigners.h"
#include "loader/InstallLocation.h"
#include "loader/PathRules.h"
#include "loader/PolicySources.h"
#include "loader/SideLoadingPolicy.h"
#include "platform/Text.h"

#include <gmock/gmock.h>

#include <map>
#include <tuple>

namespace tarn::loader {
namespace {

using platform::RegistryRoot;
using platform::RegistryView;
using ::testing::ElementsAre;
using Place = std::tuple<RegistryRoot, RegistryView, std::wstring>;

const std::wstring kAccepted(kAcceptedSigners[3]);
const std::wstring kKey = L"Software\\Quorell Tarn Native";
const Place kUser{RegistryRoot::CurrentUser, RegistryView::Default, kKey};
const Place kMachine{RegistryRoot::LocalMachine, RegistryView::Default, kKey};
const Place kMachine32{RegistryRoot::LocalMachine, RegistryView::Default,
                       L"Software\\WOW6432Node\\Quorell Tarn Native"};
const Place kMachine64{RegistryRoot::LocalMachine, RegistryView::Native64, kKey};

/// A machine as the test describes it.
struct FakePolicySources : PolicySources {
    std::string localApplicationDataFolder() const override {
        return "C:\\Users\\u\\AppData\\Local";
    }
    std::string programFile() const override { return program; }
    std::optional<std::wstring> registryText(RegistryRoot root, RegistryView view,
                                             const std::wstring& key,
                                             const std::wstring& value) const override {
        const auto found = installPaths.find({root, view, key});
        return value == L"OriginalInstallPath" && found != installPaths.end()
                   ? std::optional(found->second)
                   : std::nullopt;
    }
    std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::wstring& key,
                                                const std::wstring& value) const override {
        return root == RegistryRoot::LocalMachine && key == L"SOFTWARE\\Policies\\QuorellObrix" &&
                       value == L"enableDllSideLoadingProtection"
                   ? policyValue
                   : std::nullopt;
    }
    bool canReadFileProperties(const std::wstring&) const override { return isReadable; }
    std::optional<std::wstring> embeddedSignerName(const std::wstring& path) const override {
        const auto found = signers.find(path);
        return found != signers.end() ? std::optional(found->second) : std::nullopt;
    }

    std::string program = "D:\\Tool\\record-converter.exe";
    std::map<Place, std::wstring> installPaths;
    std::optional<std::uint32_t> policyValue;
    std::map<std::wstring, std::wstring> signers;
    bool isReadable = true;
};

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
}

TEST(InstallLocation, AsksInTheOrderOfThePreferenceAndKeepsAbsoluteDrivePathsSortedAndOnce) {
    const std::wstring launcher = L"C:\\Users\\u\\AppData\\Local\\QuorellTarnLauncher\\";
    FakePolicySources machine;
    const InstallLocation location(machine);
    EXPECT_EQ(location.getInstallPath(true), L"");
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(launcher));
    for (const auto& [place, path, userFirst] :
         {std::tuple{kMachine64, L"D:\\64", true}, std::tuple{kMachine32, L"D:\\32", false},
          std::tuple{kUser, L"D:\\User", false}, std::tuple{kMachine, L"B:\\Machine", false}}) {
        machine.installPaths[place] = path;
        EXPECT_EQ(location.getInstallPath(userFirst), path);
    }
    EXPECT_EQ(location.getInstallPath(true), L"D:\\User");
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(L"B:\\Machine", launcher, L"D:\\User"));
    machine.installPaths[kMachine] = L"D:\\User";
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(launcher, L"D:\\User"));
    machine.installPaths = {{kUser, L"D:\\Tarn\\..\\x"}, {kMachine, L"relative"}};
    EXPECT_THAT(location.getInstallFolders(), ElementsAre(launcher));
    // A value that is there but empty ends the search too.
    machine.installPaths[kUser] = L"";
    EXPECT_EQ(location.getInstallPath(true), L"");
}

TEST(SideLoadingPolicy, IsOnOnlyForOneAndASignedProgram) {
    const auto isOn = [](std::optional<std::uint32_t> value, const std::wstring& signer,
                         bool isReadable = true) {
        FakePolicySources machine;
        machine.policyValue = value;
        machine.signers[platform::toWide(machine.program)] = signer;
        machine.isReadable = isReadable;
        return SideLoadingPolicy(machine).isSideLoadingProtectionEnabled();
    };
    EXPECT_TRUE(isOn(1, kAccepted));
    EXPECT_FALSE(isOn({}, kAccepted) || isOn(0, kAccepted) || isOn(2, kAccepted));
    EXPECT_FALSE(isOn(1, L"Somebody Else") || isOn(1, kAccepted, false));
}

TEST(SideLoadingPolicy, ComparesInstallFoldersWithoutRegardToCase) {
    FakePolicySources machine;
    machine.policyValue = 1;
    machine.signers[platform::toWide(machine.program)] = kAccepted;
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
    const auto isAccepted = [](const std::wstring& signer) {
        FakePolicySources machine;
        machine.signers[L"D:\\x.dll"] = signer;
        return SideLoadingPolicy(machine).hasAcceptedSignature(L"D:\\x.dll", false);
    };
    for (const std::wstring_view accepted : kAcceptedSigners) {
        EXPECT_TRUE(isAccepted(std::wstring(accepted)));
    }
    std::wstring otherCase = kAccepted;
    otherCase[0] ^= 32;
    for (const std::wstring& name :
         {otherCase, kAccepted + L" ", kAccepted.substr(1), kAccepted + L'\0', std::wstring()}) {
        EXPECT_FALSE(isAccepted(name)) << platform::toUtf8(name);
    }
    FakePolicySources machine;
    machine.signers[L""] = kAccepted;
    EXPECT_TRUE(SideLoadingPolicy(machine).hasAcceptedSignature(L"", false));
    EXPECT_FALSE(SideLoadingPolicy(machine).hasAcceptedSignature(L"", true));
}

} // namespace
} // namespace tarn::loader
