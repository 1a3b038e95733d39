#pragma once

#include "loader/PolicySources.h"
#include "platform/Text.h"

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace tarn::testing {

/// A machine as the test describes it.
class FakePolicySources : public loader::PolicySources {
public:
    using Place = std::tuple<platform::RegistryRoot, platform::RegistryView, std::wstring>;

    std::string localApplicationDataFolder() const override { return localData; }
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
    bool canReadFileProperties(const std::wstring& path) const override {
        return !unreadable.contains(path);
    }
    std::optional<std::wstring> embeddedSignerName(const std::wstring& path) const override {
        const auto found = signers.find(path);
        return found != signers.end() ? std::optional(found->second) : std::nullopt;
    }

    /// Turns the protection on by a policy and a program that is signed.
    void protect(const std::wstring& signer) {
        policyValue = 1;
        signers[platform::toWide(program)] = signer;
    }

    std::string localData = "C:\\Users\\u\\AppData\\Local";
    std::string program = "D:\\Tool\\record-converter.exe";
    std::map<Place, std::wstring> installPaths;
    std::optional<std::uint32_t> policyValue;
    std::map<std::wstring, std::wstring> signers;
    std::set<std::wstring> unreadable;
};

} // namespace tarn::testing
