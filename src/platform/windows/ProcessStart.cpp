#include "platform/ProcessStart.h"

namespace tarn::platform {

void prepareProcess() {
}

} // namespace tarn::platform
