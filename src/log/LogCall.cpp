#include "log/LogCall.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn {
namespace {

std::atomic<const LogHook*> currentHook{nullptr};
std::atomic<LevelGate> currentGate{nullptr};

/// Every hook ever set is kept reachable and never freed: a call on another thread may be in it,
/// and logging goes on while the process exits.
const LogHook* keepHook(LogHook hook) {
    static std::mutex& mutex = *new std::mutex;
    static auto& hooks = *new std::vector<std::unique_ptr<const LogHook>>;
    const std::lock_guard lock(mutex);
    hooks.push_back(std::make_unique<const LogHook>(std::move(hook)));
    return hooks.back().get();
}

} // namespace

void setLogHook(LogHook hook) {
    currentHook.store(keepHook(std::move(hook)), std::memory_order_release);
}

void setDefaultLogHook(LogHook hook, LevelGate gate) {
    const LogHook* present = currentHook.load(std::memory_order_acquire);
    if (present == nullptr || !*present) {
        currentHook.compare_exchange_strong(present, keepHook(std::move(hook)));
    }
    LevelGate noGate = nullptr;
    currentGate.compare_exchange_strong(noGate, gate);
}

LogHook logHook() {
    const LogHook* hook = currentHook.load(std::memory_order_acquire);
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
    const LogHook* hook = currentHook.load(std::memory_order_acquire);
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
