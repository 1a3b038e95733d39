#pragma once

#include "platform/Registry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::loader {

/// What the machine tells the install location and the side-loading policy; tests put their own
/// answers in its place. Any thread.
class PolicySources {
public:
    virtual ~PolicySources() = default;
    virtual std::string localApplicationDataFolder() const = 0;
    /// The running program's own file, UTF-8.
    virtual std::string programFile() const = 0;
    virtual std::optional<std::wstring> registryText(platform::RegistryRoot root,
                                                     platform::RegistryView view,
                                                     const std::wstring& key,
                                                     const std::wstring& value) const = 0;
    virtual std::optional<std::uint32_t> registryNumber(platform::RegistryRoot root,
                                                        const std::wstring& key,
                                                        const std::wstring& value) const = 0;
    virtual bool canReadFileProperties(const std::wstring& path) const = 0;
    virtual std::optional<std::wstring> embeddedSignerName(const std::wstring& path) const = 0;
};

/// The answers of this computer; lives until the process ends.
const PolicySources& machinePolicySources();

} // namespace tarn::loader
