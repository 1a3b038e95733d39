#include "platform/Signature.h"

#include "platform/Files.h"
#include "platform/Text.h"

namespace tarn::platform {

std::optional<std::wstring> embeddedSignerName(const std::wstring& /*path*/) {
    return std::nullopt;
}

bool canReadFileProperties(const std::wstring& path) {
    return fileDetails(toUtf8(path)).has_value();
}

} // namespace tarn::platform
