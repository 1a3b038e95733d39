#pragma once

#include "loader/PolicySources.h"
#include "platform/Text.h"

#include <map>
#include <string>
#include <tuple>

namespace tarn::testing {

/// A machine as the test describes it.
struct FakePolicySources : loader::PolicySources {
    using Place = std::tuple<platform::RegistryRoot, platform::RegistryView, std::wstring>;

    std::string localApplicationDataFolder() const override {
        return "C:\\Users\\u\\AppData\\Local";
    }
    std::string programFile() const override { return program; }
    std::optional<std::wstring> registryText(platform::RegistryRoot root,
                                             platform::RegistryView view, const std::wstring& key,
                                             const std::wstring& value) const override {
        const auto found = installPaths.find({root, view, key});
        return value == L"OriginalInstallPath" && found != installPaths.end()
                   ? std::optional(found->second)
                   : std::nullopt;
    }
    std::optional<std::uint32_t> registryNumber(platform::RegistryRoot root,
                                                const std::wstring& key,
                                                const std::wstring& value) const override {
        return root == platform::RegistryRoot::LocalMachine &&
                       key == L"SOFTWARE\\Policies\\QuorellObrix" &&
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

} // namespace tarn::testing
