#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::platform {

enum class RegistryRoot { CurrentUser, LocalMachine };
enum class RegistryView {
    Default, ///< RegGetValueW on the root
    Native64 ///< the key opened with KEY_READ | KEY_WOW64_64KEY first
};

/// A text value, nothing when it is absent or of another type. Linux keeps no registry: nothing.
std::optional<std::wstring> registryText(RegistryRoot root, RegistryView view,
                                         const std::wstring& key, const std::wstring& value);

/// A value read with RRF_RT_ANY into a 4-byte buffer; nothing when it does not fit or is absent.
std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::wstring& key,
                                            const std::wstring& value);

} // namespace tarn::platform
