#include "recordconverter/UnloadLibrary.h"

#include "log/LogCall.h"

namespace recordconverter {

void unloadAndLog(tarn::platform::LibraryHandle library) {
    if (tarn::platform::unload(library)) {
        TARN_LOG(tarn::RootLoggerLevel::Info, "FreeLibrary successfully");
        return;
    }
    const std::uint32_t error = tarn::platform::lastError();
    TARN_LOG(tarn::RootLoggerLevel::Error, "FreeLibrary failed with error: " << error);
}

} // namespace recordconverter
