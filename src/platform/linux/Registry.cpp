#include "platform/Registry.h"

namespace tarn::platform {

// Linux keeps no registry: every value is absent.

std::optional<std::wstring> registryText(RegistryRoot /*root*/, RegistryView /*view*/,
                                         const std::wstring& /*key*/,
                                         const std::wstring& /*value*/) {
    return std::nullopt;
}

std::optional<std::uint32_t> registryNumber(RegistryRoot /*root*/, const std::wstring& /*key*/,
                                            const std::wstring& /*value*/) {
    return std::nullopt;
}

} // namespace tarn::platform
