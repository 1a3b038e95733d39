#pragma once

#include <cstdint>
#include <string>

namespace zel {
class IZelTraceSink;
}

/// The engine's trace lines, on their way to the program's sink. Any thread.
namespace zelcore {

enum class TraceLevel : std::uint32_t { Error = 0, Warning = 1, Info = 2, Debug = 3, Trace = 4 };

bool isTraced(TraceLevel level);
/// Never throws: a line that cannot be handed over is lost.
void trace(TraceLevel level, const std::string& line) noexcept;

/// Returns when no call on the former sink is under way on another thread.
void setTraceSink(zel::IZelTraceSink* sink);
/// As setTraceSink(nullptr), but gives up waiting after a moment.
void dropTraceSink();
/// Lines of a level above `maxLevel` are not built; 2 until somebody sets it.
void setTraceMaxLevel(std::int32_t maxLevel);

/// From now on FFmpeg's own messages are trace lines, one level less grave than FFmpeg says: what
/// it calls an error may be a damaged frame that the conversion survives.
void traceFfmpeg();

} // namespace zelcore
