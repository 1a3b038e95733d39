#pragma once

#include "log/Level.h"
#include "log/LogStream.h"

#include <functional>
#include <string_view>

/// The face of logging that every floor may include: it knows no queue, no sink and no file. The
/// root logger plugs itself in from above; until then nothing is enabled and nothing is kept.
namespace tarn {

/// Receives a message that passed its level gate; the texts are the caller's. Called on the logging
/// thread, several at once.
using LogHook = std::function<void(std::string_view message, RootLoggerLevel::Level level, int line,
                                   std::string_view file, std::string_view function)>;

using LevelGate = bool (*)(RootLoggerLevel::Level level) noexcept;

/// Replaces the hook for the whole process, from any thread. A replaced hook is never destroyed,
/// because a call may still be inside it. An empty hook drops every message.
void setLogHook(LogHook hook);

/// Replaces the gate; null disables every level.
void setLevelGate(LevelGate gate) noexcept;

/// Installs a hook and a gate, each only where there is none.
void setDefaultLogHook(LogHook hook, LevelGate gate);

/// What is installed now; empty and null when nothing is.
LogHook logHook();
LevelGate levelGate() noexcept;

bool isLogEnabled(RootLoggerLevel::Level level) noexcept;

/// Hands a message to the hook. Never throws: a message that cannot be handed over is dropped.
void writeLog(std::string_view message, RootLoggerLevel::Level level, int line,
              std::string_view file, std::string_view function) noexcept;

/// "a/b/RootLogger.cpp" gives "RootLogger".
constexpr std::string_view sourceName(std::string_view path) {
    if (const auto separator = path.find_last_of("/\\"); separator != std::string_view::npos) {
        path.remove_prefix(separator + 1);
    }
    return path.substr(0, path.rfind('.'));
}

} // namespace tarn

/// Logs `stream` (operands joined by <<) under a line number that identifies the record. The
/// operands are evaluated only when the level is enabled.
#define TARN_LOG_AT(level, line, ...)                                               \
    do {                                                                            \
        if (::tarn::isLogEnabled(level)) {                                          \
            constexpr std::string_view tarnSource = ::tarn::sourceName(__FILE__);   \
            ::tarn::LogStream tarnStream;                                           \
            tarnStream << __VA_ARGS__;                                              \
            ::tarn::writeLog(tarnStream.text(), level, line, tarnSource, __func__); \
        }                                                                           \
    } while (false)

/// The same under the current source line: TARN_LOG(tarn::RootLoggerLevel::Info, "n: " << n);
#define TARN_LOG(level, ...) TARN_LOG_AT(level, __LINE__, __VA_ARGS__)
