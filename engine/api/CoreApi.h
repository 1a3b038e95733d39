#pragma once

#include "zel/IZelMediaConverter.h"
#include "zel/IZelMediaConverterSink.h"
#include "zel/IZelTraceSink.h"

#include <cstdint>

/// What the core library offers to mediaconverter and zelclient, its two faces, and to nobody else.
/// Nothing throws.
#if defined(_WIN32) && defined(ZELCORE_BUILD)
#define ZELCORE_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZELCORE_API __declspec(dllimport)
#else
#define ZELCORE_API __attribute__((visibility("default")))
#endif

extern "C" {

ZELCORE_API std::int32_t ZelCoreCreateConverter(zel::IZelMediaConverter** instance,
                                                zel::IZelMediaConverterSink* sink);
/// See ZelStopConversions.
ZELCORE_API std::int32_t ZelCoreStopConversions(std::uint32_t timeoutMilliseconds);
/// See ZelConversionLosses.
ZELCORE_API std::int32_t ZelCoreConversionLosses(std::int32_t accepts, char* text,
                                                 std::uint32_t capacity);
/// See ZelConversionEnding.
ZELCORE_API std::int32_t ZelCoreConversionEnding(char* text, std::uint32_t capacity);
/// See ZelConversionSetting.
ZELCORE_API std::int32_t ZelCoreConversionSetting(const char* name, const char* value);
/// mediaconverter is being unloaded: asks every conversion to stop and takes their sinks away,
/// waiting a moment for a call that is under way, never for a conversion.
ZELCORE_API void ZelCoreAbandonConversions();

/// Returns when no call on the former sink is under way on another thread.
ZELCORE_API void ZelCoreSetTraceSink(zel::IZelTraceSink* sink);
ZELCORE_API void ZelCoreSetTraceMaxLevel(std::int32_t maxLevel);
/// zelclient is being unloaded: as setting a null sink, but waiting a moment only.
ZELCORE_API void ZelCoreDropTraceSink();
}
