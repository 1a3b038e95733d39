#pragma once

#include "threading/ExternalInput.h"

#include <memory>
#include <string>

namespace tarn {

/// Names the calling thread for the time of one piece of work. Closing puts the thread's earlier
/// description back and leaves its hint_external_input empty, so that no work leaves its context
/// behind. Opened and closed on the same thread.
class ScopedThreadNotifications {
public:
    /// With `registerThread` the scope becomes the thread's current one, unless an outer one is.
    ScopedThreadNotifications(const std::string& description, bool registerThread);
    /// The same, but closing makes a copy of `savedContext` the thread's context.
    ScopedThreadNotifications(const std::string& description, bool registerThread,
                              std::shared_ptr<const hint_external_input> savedContext);
    ScopedThreadNotifications(const ScopedThreadNotifications&) = delete;
    ScopedThreadNotifications& operator=(const ScopedThreadNotifications&) = delete;
    ~ScopedThreadNotifications();

    /// The calling thread's outermost registered scope, null when there is none.
    static const ScopedThreadNotifications* currentScope() noexcept;

private:
    std::string mSavedDescription;
    std::shared_ptr<const hint_external_input> mSavedContext;
    bool mRegister;
};

} // namespace tarn
