#include "loader/SideLoadingPolicy.h"

#include "loader/AcceptedSigners.h"
#include "loader/InstallLocation.h"
#include "loader/PathRules.h"
#include "platform/Text.h"

#include <algorithm>

namespace tarn::loader {

const SideLoadingPolicy& SideLoadingPolicy::ofProcess() {
    // Leaked: libraries may still be loaded by other threads while the process exits.
    static const SideLoadingPolicy& policy = *new SideLoadingPolicy(machinePolicySources());
    return policy;
}

bool SideLoadingPolicy::refuses(const std::wstring& path) const {
    return isInInstallFolder(path) && isSideLoadingProtectionEnabled() &&
           !hasAcceptedSignature(path, false);
}

bool SideLoadingPolicy::isInInstallFolder(const std::wstring& path) const {
    if (!isAbsoluteDrivePath(path)) {
        return false;
    }
    auto folders = InstallLocation(mSources).getInstallFolders();
    if (!isSideLoadingProtectionEnabled()) {
        folders.push_back(parentFolder(platform::toWide(mSources.programFile())));
    }
    return std::ranges::any_of(folders, [parent = parentFolder(path)](const std::wstring& folder) {
        return !folder.empty() && platform::startsWithIgnoringCase(parent, folder);
    });
}

bool SideLoadingPolicy::isSideLoadingProtectionEnabled() const {
    Protection known = mProtection.load();
    if (known == Protection::Unknown) {
        const Protection found = isProtectionDemanded() ? Protection::On : Protection::Off;
        // Of two first callers, the answer of the earlier one stands for both.
        known = mProtection.compare_exchange_strong(known, found) ? found : known;
    }
    return known == Protection::On;
}

bool SideLoadingPolicy::isProtectionDemanded() const {
    const auto value = mSources.registryNumber(platform::RegistryRoot::LocalMachine,
                                               L"SOFTWARE\\Policies\\QuorellObrix",
                                               L"enableDllSideLoadingProtection");
    return value == 1U && hasAcceptedSignature(platform::toWide(mSources.programFile()), true);
}

bool SideLoadingPolicy::hasAcceptedSignature(const std::wstring& path, bool strict) const {
    if (strict && (path.empty() || !mSources.canReadFileProperties(path))) {
        return false;
    }
    const auto signer = mSources.embeddedSignerName(path);
    return signer && std::ranges::find(kAcceptedSigners, *signer) != std::end(kAcceptedSigners);
}

} // namespace tarn::loader
