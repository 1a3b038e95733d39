#include "threading/ScopedThreadNotifications.h"

#include "platform/Identity.h"
#include "threading/ThreadUtilities.h"

#include <utility>

namespace tarn {
namespace {

thread_local const ScopedThreadNotifications* outermostScope = nullptr;

} // namespace

ScopedThreadNotifications::ScopedThreadNotifications(const std::string& description,
                                                     bool registerThread)
    : ScopedThreadNotifications(description, registerThread, nullptr) {
}

ScopedThreadNotifications::ScopedThreadNotifications(
    const std::string& description, bool registerThread,
    std::shared_ptr<const hint_external_input> savedContext)
    : mSavedDescription(ThreadUtilities::getThreadDescription(platform::threadId())),
      mSavedContext(std::move(savedContext)),
      mRegister(registerThread) {
    ThreadUtilities::setThreadDescription(description);
    if (mRegister && outermostScope == nullptr) {
        outermostScope = this;
    }
}

ScopedThreadNotifications::~ScopedThreadNotifications() {
    if (mRegister && outermostScope == this) {
        outermostScope = nullptr;
    }
    ThreadUtilities::setThreadDescription(mSavedDescription);
    if (mSavedContext != nullptr) {
        hint_external_input::set(mSavedContext->first, mSavedContext->second);
    } else {
        hint_external_input::clear();
    }
}

const ScopedThreadNotifications* ScopedThreadNotifications::currentScope() noexcept {
    return outermostScope;
}

} // namespace tarn
