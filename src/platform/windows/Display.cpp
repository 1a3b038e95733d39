#include "platform/Display.h"

namespace tarn::platform {

std::vector<std::string> windowSystems() {
    return {"windows"};
}

bool isWindowSystemThere(const std::string& /*name*/) {
    return true;
}

} // namespace tarn::platform
