#include "threading/Assertion.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn {
namespace {

/// A handler that any thread may call while another replaces it or the process exits. Only the
/// pointer to the current one changes; what was ever set stays.
template <typename Handler>
class HandlerSlot {
public:
    void set(Handler handler) {
        const std::lock_guard lock(mMutex);
        mKept.push_back(std::make_unique<const Handler>(std::move(handler)));
        mCurrent.store(mKept.back().get(), std::memory_order_release);
    }
    void reset() noexcept { mCurrent.store(nullptr, std::memory_order_release); }

    template <typename... Arguments>
    void call(const Arguments&... arguments) const {
        const Handler* handler = mCurrent.load(std::memory_order_acquire);
        if (handler != nullptr && *handler) {
            (*handler)(arguments...);
        }
    }

private:
    std::mutex mMutex;
    std::vector<std::unique_ptr<const Handler>> mKept;
    std::atomic<const Handler*> mCurrent{nullptr};
};

struct Handlers {
    HandlerSlot<AssertionMessageHandler> message;
    HandlerSlot<AssertionDetailHandler> detail;
};

Handlers& handlers() {
    // Never destroyed: the engine's threads may report while the process exits.
    static Handlers& instance = *new Handlers;
    return instance;
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
    handlers().message.call(text, line, firstSite, secondSite);
    handlers().detail.call(firstSite, secondSite, line, expression, message);
}

} // namespace tarn
