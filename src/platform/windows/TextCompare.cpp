#include "platform/Text.h"

// windows.h first: shlwapi.h does not stand alone.
#include <windows.h>

#include <shlwapi.h>

namespace tarn::platform {

bool startsWithIgnoringCase(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() &&
           StrCmpNIW(text.data(), prefix.data(), static_cast<int>(prefix.size())) == 0;
}

} // namespace tarn::platform
