#pragma once

#include "loader/InstallLocation.h"
#include "loader/LibraryLoader.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "platform/windows/RegistrySandbox.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

namespace tarn::loader {

using platform::testing::RegistrySandbox;

inline constexpr const wchar_t* kInstallKey = L"Software\\Quorell Tarn Native";
inline constexpr const wchar_t* kPolicyKey = L"SOFTWARE\\Policies\\QuorellObrix";

/// A path below the folder that this test program and its libraries lie in.
inline std::string besideProgram(const std::string& name) {
    return FileUtils().directoryOfPath(platform::programFile()) + name;
}

/// An install folder with libraries, named in the registry.
class PolicyFixture : public ::testing::Test {
protected:
    void SetUp() override {
        install(HKEY_CURRENT_USER, mInstalled.path());
        testing::expectErrorLine("Failed to load neighbour.dll"); // some are refused
    }
    static void install(HKEY root, const std::string& folder, const wchar_t* key = kInstallKey) {
        RegistrySandbox::setText(root, key, L"OriginalInstallPath", platform::toWide(folder));
    }
    static void demandProtection(DWORD value = 1) {
        RegistrySandbox::setNumber(HKEY_LOCAL_MACHINE, kPolicyKey,
                                   L"enableDllSideLoadingProtection", value);
    }
    /// Puts a library into a folder and loads it from there.
    static bool loads(const std::string& name, const std::string& folder) {
        EXPECT_TRUE(FileUtils().copyFile(besideProgram(name), folder + "\\neighbour.dll"));
        mLog->take();
        LibraryHandle library = loadLibrary(L"neighbour.dll", platform::toWide(folder));
        return library != nullptr && platform::unload(library);
    }

    const RegistrySandbox mRegistry;
    const testing::TemporaryFolder mInstalled;
    const testing::TemporaryFolder mElsewhere;
    static inline testing::HookedLog* mLog = new testing::HookedLog;
};

} // namespace tarn::loader
