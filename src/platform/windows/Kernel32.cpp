#include "platform/windows/Kernel32.h"

#include "log/LogCall.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"

namespace tarn::platform {
namespace {

// These records are known by their line numbers.
constexpr int kLibraryMissingLine = 68;
constexpr int kFunctionMissingLine = 75;

LibraryHandle loadKernel32() {
    for (const std::string& folder : systemLibraryFolders()) {
        return loadWithSystemSearchPath(toWide(folder + "\\Kernel32.dll"));
    }
    return nullptr;
}

} // namespace

void* loadKernel32Function(const char* name) {
    const LibraryHandle library = loadKernel32();
    if (library == nullptr) {
        const std::uint32_t error = lastError();
        TARN_LOG_AT(RootLoggerLevel::Error, kLibraryMissingLine,
                    "Can't load Kernel32 library. Error code " << error);
        return nullptr;
    }
    void* function = findSymbol(library, name);
    if (function == nullptr) {
        TARN_LOG_AT(RootLoggerLevel::Error, kFunctionMissingLine,
                    "Can't load " << name << " from Kernel32");
        unload(library);
    }
    return function;
}

} // namespace tarn::platform
