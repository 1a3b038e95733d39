#include "engine/api/CoreApi.h"
#include "engine/api/Export.h"

namespace {

// The conversion itself lives in the core library, which stays in memory. When the program unloads
// this one, its sink is about to go: the core must hear of it before the unload returns.
struct UnloadHook {
    ~UnloadHook() { ZelCoreAbandonConversions(); }
};
const UnloadHook unloadHook;

} // namespace

extern "C" {

ZEL_EXPORT std::int32_t CreateMediaConverter(zel::IZelMediaConverter** instance,
                                             zel::IZelMediaConverterSink* sink) {
    return ZelCoreCreateConverter(instance, sink);
}

ZEL_EXPORT std::int32_t ZelStopConversions(std::uint32_t timeoutMilliseconds) {
    return ZelCoreStopConversions(timeoutMilliseconds);
}

ZEL_EXPORT std::int32_t ZelConversionLosses(std::int32_t accepts, char* text,
                                            std::uint32_t capacity) {
    return ZelCoreConversionLosses(accepts, text, capacity);
}

ZEL_EXPORT std::int32_t ZelConversionEnding(char* text, std::uint32_t capacity) {
    return ZelCoreConversionEnding(text, capacity);
}

ZEL_EXPORT std::int32_t ZelConversionSetting(const char* name, const char* value) {
    return ZelCoreConversionSetting(name, value);
}
}
