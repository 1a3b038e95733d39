#pragma once

#include <optional>
#include <string>

namespace tarn::platform {

/// Simple display name of the signer of a file that carries exactly one valid embedded Authenticode
/// signature, which is of the bytes that the file has now; nothing in every other case. Linux
/// libraries carry none: nothing.
std::optional<std::wstring> embeddedSignerName(const std::wstring& path);

/// True when the file's properties can be read at all.
bool canReadFileProperties(const std::wstring& path);

} // namespace tarn::platform
