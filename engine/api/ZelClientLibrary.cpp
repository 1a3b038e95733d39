#include "engine/api/CoreApi.h"
#include "engine/api/Export.h"

namespace {

// A program that unloads this library without detaching its sink first must not be called later.
struct UnloadHook {
    ~UnloadHook() { ZelCoreDropTraceSink(); }
};
const UnloadHook unloadHook;

} // namespace

extern "C" {

ZEL_EXPORT void ZelSetTraceSink(zel::IZelTraceSink* sink) {
    ZelCoreSetTraceSink(sink);
}

ZEL_EXPORT void ZelSetTraceMaxLevel(std::int32_t maxLevel) {
    ZelCoreSetTraceMaxLevel(maxLevel);
}
}
