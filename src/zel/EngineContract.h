#pragma once

#include "zel/IZelMediaConverter.h"
#include "zel/IZelMediaConverterSink.h"
#include "zel/IZelTraceSink.h"

#include <cstdint>

/// Exports of the engine's two libraries and the meaning of its result codes.
namespace zel {

/// "CreateMediaConverter" of mediaconverter: stores a new instance in `*instance`.
using CreateMediaConverterFunction = std::int32_t (*)(IZelMediaConverter** instance,
                                                      IZelMediaConverterSink* sink);
/// "ZelSetTraceSink" of zelclient: null detaches.
using SetTraceSinkFunction = void (*)(IZelTraceSink* sink);
/// "ZelSetTraceMaxLevel" of zelclient.
using SetTraceMaxLevelFunction = void (*)(std::int32_t maxLevel);
/// "ZelStopConversions" of mediaconverter, optional, offered by our own engine alone: asks every
/// running conversion to stop, waits for their threads for at most `timeoutMilliseconds`, and
/// returns 0 when none is left. Stopped conversions report nothing more.
using StopConversionsFunction = std::int32_t (*)(std::uint32_t timeoutMilliseconds);

/// "ZelConversionLosses" of mediaconverter, optional, offered by our own engine alone. `accepts`
/// other than 0: conversions that start from now on may complete although content of their sources
/// is missing; without that word such a conversion ends with an error. Returns the bytes, NUL
/// included, of the sentence about what the conversion that ended last lost, 0 when it lost
/// nothing, and writes at most `capacity` of them to `text`, always with a NUL. UTF-8, no full
/// stop.
using ConversionLossesFunction = std::int32_t (*)(std::int32_t accepts, char* text,
                                                  std::uint32_t capacity);

/// "ZelConversionEnding" of mediaconverter, optional, offered by our own engine alone, for a caller
/// that is not the sink: how the conversion that was started last ended. kZelSuccess when its
/// destination is complete, the number that OnError got when it failed, kZelNotEnded when it was
/// stopped or is at work, or none was started. Writes at most `capacity` bytes of the sentence that
/// says why it failed to `text`, always with a NUL. UTF-8, no full stop.
using ConversionEndingFunction = std::int32_t (*)(char* text, std::uint32_t capacity);

/// "ZelConversionSetting" of mediaconverter, optional, offered by our own engine alone: a choice
/// for the conversions that start from now on, both texts NUL-terminated. "fast-start", "on" or
/// "off" (at first off): the index lies in front of the packets. "quality", "small", "normal" (at
/// first) or "high": of pictures that are transcoded. A failure when it has no such setting or
/// value.
using ConversionSettingFunction = std::int32_t (*)(const char* name, const char* value);

inline constexpr std::int32_t kZelSuccess = 0;
inline constexpr std::int32_t kZelNotEnded = -1;
/// Wrong number of source files; 0xFFFFFF9C, so a failure by isFailure() too.
inline constexpr std::int32_t kZelSrcFileNumberError = -100;

/// A result is a failure when any of its bits 12 to 15 is set.
constexpr bool isFailure(std::int32_t result) {
    return (static_cast<std::uint32_t>(result) & 0xF000U) != 0;
}
static_assert(isFailure(kZelSrcFileNumberError) && !isFailure(kZelSuccess) && !isFailure(0x0FFF));

} // namespace zel
