#include "launcher/terminal/EngineComplaint.h"

namespace launcher {

void EngineComplaint::log(const std::string& /*line*/, const tarn::LogComponents& components) {
    if (components.file == "ZEL" && components.level == "Error") {
        const std::lock_guard lock(mMutex);
        mText = components.message;
    }
}

std::string EngineComplaint::text() const {
    const std::lock_guard lock(mMutex);
    return mText;
}

void EngineComplaint::forget() {
    const std::lock_guard lock(mMutex);
    mText.clear();
}

} // namespace launcher
