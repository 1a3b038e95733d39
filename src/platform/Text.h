#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

/// UTF-8 to the platform's wide text (UTF-16 on Windows, UTF-32 on Linux).
/// An invalid sequence becomes U+FFFD; nothing throws but for want of memory.
std::wstring toWide(std::string_view utf8);

/// Wide text to UTF-8. A lone surrogate or an out-of-range value becomes U+FFFD.
std::string toUtf8(std::wstring_view wide);

/// True when the whole text is well-formed UTF-8 (no overlong forms, no surrogates).
bool isValidUtf8(std::string_view text);

/// Whether a text begins with another without regard to case, as the system compares file names
/// (`StrCmpNIW`; simple case folding by the C locale on Linux).
bool startsWithIgnoringCase(std::wstring_view text, std::wstring_view prefix);

} // namespace tarn::platform
