#include "threading/Assertion.h"

#include "log/Replaceable.h"

#include <utility>

namespace tarn {
namespace {

struct Handlers {
    Replaceable<AssertionMessageHandler> message;
    Replaceable<AssertionDetailHandler> detail;
};

Handlers& handlers() {
    // Never destroyed: the engine's threads may report while the process exits.
    static Handlers& instance = *new Handlers;
    return instance;
}

template <typename Handler, typename... Arguments>
void call(const Replaceable<Handler>& slot, const Arguments&... arguments) {
    if (const Handler* handler = slot.get(); handler != nullptr && *handler) {
        (*handler)(arguments...);
    }
}

/// Forgets the handlers when the program unloads, because their code may go first.
struct UnloadGuard {
    UnloadGuard() = default;
    UnloadGuard(const UnloadGuard&) = delete;
    UnloadGuard& operator=(const UnloadGuard&) = delete;
    ~UnloadGuard() {
        handlers().message.reset();
        handlers().detail.reset();
    }
} const unloadGuard;

} // namespace

void setAssertionMessageHandler(AssertionMessageHandler handler) {
    handlers().message.set(std::move(handler));
}

void setAssertionDetailHandler(AssertionDetailHandler handler) {
    handlers().detail.set(std::move(handler));
}

void assertionFailed(const std::string& firstSite, std::uint32_t line,
                     const std::string& secondSite, const std::string& expression,
                     const std::string& message) {
    std::string text = "Assertion failed: " + expression;
    if (!message.empty()) {
        text += " with message: " + message;
    }
    call(handlers().message, text, line, firstSite, secondSite);
    call(handlers().detail, firstSite, secondSite, line, expression, message);
}

} // namespace tarn
