#pragma once

#include "threading/ScopedThreadNotifications.h"

#include <optional>
#include <string>

namespace tarn {

/// The scope around a worker's tasks. Naming a thread costs system calls, so a task's scope stays
/// open for the next task when that has the same name and follows at once; what the task has left
/// behind on its thread goes in any case.
class TaskScope {
public:
    TaskScope(std::string prefix, bool registerThread);

    /// Names the thread "prefix[task name]".
    void enter(const std::string& taskName);
    /// After a task that returned.
    void leave() noexcept;
    /// Puts the thread's own description back: before it waits, and before anything else is done
    /// under its name.
    void close() noexcept;
    bool isOpen() const noexcept { return mScope.has_value(); }

private:
    const std::string mPrefix;
    const bool mRegisterThread;
    std::string mTaskName;
    std::string mDescription;
    std::optional<ScopedThreadNotifications> mScope;
};

} // namespace tarn
