#include "platform/Display.h"

namespace tarn::platform {

bool hasDisplay() {
    return true;
}

} // namespace tarn::platform
