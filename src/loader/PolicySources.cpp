#include "loader/PolicySources.h"

#include "client/ClientFolders.h"
#include "platform/Identity.h"
#include "platform/Signature.h"

namespace tarn::loader {
namespace {

class MachinePolicySources : public PolicySources {
public:
    std::string localApplicationDataFolder() const override {
        return loader::localApplicationDataFolder();
    }
    std::string programFile() const override { return platform::programFile(); }
    std::optional<std::wstring> registryText(platform::RegistryRoot root,
                                             platform::RegistryView view, const std::wstring& key,
                                             const std::wstring& value) const override {
        return platform::registryText(root, view, key, value);
    }
    std::optional<std::uint32_t> registryNumber(platform::RegistryRoot root,
                                                const std::wstring& key,
                                                const std::wstring& value) const override {
        return platform::registryNumber(root, key, value);
    }
    bool canReadFileProperties(const std::wstring& path) const override {
        return platform::canReadFileProperties(path);
    }
    std::optional<std::wstring> embeddedSignerName(const std::wstring& path) const override {
        return platform::embeddedSignerName(path);
    }
};

} // namespace

const PolicySources& machinePolicySources() {
    // Leaked: libraries may still be loaded by other threads while the process exits.
    static const PolicySources& sources = *new MachinePolicySources;
    return sources;
}

} // namespace tarn::loader
