#pragma once

#include "logging/LogCall.h"

#include <string>
#include <vector>

namespace tarn::testing {

/// Takes the place of the root logger for one test: every level is enabled but Trace, and lines are
/// kept as "<Level> message". For tests of one thread.
class HookedLog {
public:
    HookedLog() {
        lines().clear();
        setLogHook([](std::string message, RootLoggerLevel::Level level, int /*line*/,
                      std::string_view /*file*/, std::string_view function) {
            lines().push_back("<" + std::string(RootLoggerLevel::levelText(level)) + "> " +
                              message);
            functions().emplace_back(function);
        });
        setLevelGate(
            [](RootLoggerLevel::Level level) noexcept { return level != RootLoggerLevel::Trace; });
    }
    ~HookedLog() {
        setLevelGate(nullptr);
        setLogHook({});
    }
    HookedLog(const HookedLog&) = delete;
    HookedLog& operator=(const HookedLog&) = delete;

    static std::vector<std::string>& lines() {
        static auto& lines = *new std::vector<std::string>;
        return lines;
    }
    static std::vector<std::string>& functions() {
        static auto& functions = *new std::vector<std::string>;
        return functions;
    }
};

} // namespace tarn::testing
