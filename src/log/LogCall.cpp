#include "log/LogCall.h"

#include "log/Replaceable.h"

#include <atomic>
#include <utility>

namespace tarn {
namespace {

std::atomic<LevelGate> currentGate{nullptr};

Replaceable<LogHook>& hooks() {
    // Never destroyed: logging goes on while the process exits.
    static auto& instance = *new Replaceable<LogHook>;
    return instance;
}

} // namespace

void setLogHook(LogHook hook) {
    hooks().set(std::move(hook));
}

void setDefaultLogHook(LogHook hook, LevelGate gate) {
    hooks().setDefault(std::move(hook));
    LevelGate noGate = nullptr;
    currentGate.compare_exchange_strong(noGate, gate);
}

LogHook logHook() {
    const LogHook* hook = hooks().get();
    return hook != nullptr ? *hook : LogHook();
}

LevelGate levelGate() noexcept {
    return currentGate.load(std::memory_order_acquire);
}

void setLevelGate(LevelGate gate) noexcept {
    currentGate.store(gate, std::memory_order_release);
}

bool isLogEnabled(RootLoggerLevel::Level level) noexcept {
    const LevelGate gate = currentGate.load(std::memory_order_acquire);
    return gate != nullptr && gate(level);
}

void writeLog(std::string_view message, RootLoggerLevel::Level level, int line,
              std::string_view file, std::string_view function) noexcept {
    const LogHook* hook = hooks().get();
    if (hook == nullptr || !*hook) {
        return;
    }
    try {
        (*hook)(message, level, line, file, function);
    } catch (...) {
        // Logging never throws to its caller, and there is nowhere left to say so.
        return;
    }
}

} // namespace tarn
