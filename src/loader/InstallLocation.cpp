#include "loader/InstallLocation.h"

#include "loader/PathRules.h"
#include "platform/Text.h"

#include <algorithm>
#include <array>

namespace tarn::loader {
namespace {

using platform::RegistryRoot;
using platform::RegistryView;

constexpr const wchar_t* kKey = L"Software\\Quorell Tarn Native";
constexpr const wchar_t* kKeyOf32BitPrograms = L"Software\\WOW6432Node\\Quorell Tarn Native";
constexpr const wchar_t* kValue = L"OriginalInstallPath";

struct Place {
    RegistryRoot root;
    RegistryView view;
    const wchar_t* key;
};

} // namespace

std::wstring InstallLocation::getInstallPath(bool preferUser) const {
    const RegistryRoot first = preferUser ? RegistryRoot::CurrentUser : RegistryRoot::LocalMachine;
    const RegistryRoot second = preferUser ? RegistryRoot::LocalMachine : RegistryRoot::CurrentUser;
    const std::array<Place, 4> places{{
        {first, RegistryView::Default, kKey},
        {second, RegistryView::Default, kKey},
        {RegistryRoot::LocalMachine, RegistryView::Default, kKeyOf32BitPrograms},
        {RegistryRoot::LocalMachine, RegistryView::Native64, kKey},
    }};
    for (const Place& place : places) {
        if (auto path = mSources.registryText(place.root, place.view, place.key, kValue)) {
            return *std::move(path);
        }
    }
    return {};
}

std::vector<std::wstring> InstallLocation::getInstallFolders() const {
    std::vector<std::wstring> folders{
        platform::toWide(mSources.localApplicationDataFolder()) + L"\\QuorellTarnLauncher\\",
        getInstallPath(true),
        getInstallPath(false),
    };
    std::erase_if(folders, [](const std::wstring& folder) { return !isAbsoluteDrivePath(folder); });
    std::ranges::sort(folders);
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    return folders;
}

} // namespace tarn::loader
