#include "logging/LogCall.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn {
namespace {

std::atomic<const LogHook*> currentHook{nullptr};
std::atomic<LevelGate> currentGate{nullptr};

} // namespace

void setLogHook(LogHook hook) {
    // Every hook ever set is kept reachable and never freed: a call on another thread may be in it,
    // and logging goes on while the process exits.
    static std::mutex& mutex = *new std::mutex;
    static auto& hooks = *new std::vector<std::unique_ptr<const LogHook>>;
    const std::lock_guard lock(mutex);
    hooks.push_back(std::make_unique<const LogHook>(std::move(hook)));
    currentHook.store(hooks.back().get(), std::memory_order_release);
}

void setLevelGate(LevelGate gate) noexcept {
    currentGate.store(gate, std::memory_order_release);
}

bool isLogEnabled(RootLoggerLevel::Level level) noexcept {
    const LevelGate gate = currentGate.load(std::memory_order_acquire);
    return gate != nullptr && gate(level);
}

void writeLog(std::string message, RootLoggerLevel::Level level, int line, std::string_view file,
              std::string_view function) noexcept {
    const LogHook* hook = currentHook.load(std::memory_order_acquire);
    if (hook == nullptr || !*hook) {
        return;
    }
    try {
        (*hook)(std::move(message), level, line, file, function);
    } catch (...) {
        // Logging never throws to its caller, and there is nowhere left to say so.
        return;
    }
}

} // namespace tarn
