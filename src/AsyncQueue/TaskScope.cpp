#include "AsyncQueue/TaskScope.h"

#include "threading/ThreadUtilities.h"

#include <utility>

namespace tarn {

TaskScope::TaskScope(std::string prefix, bool registerThread)
    : mPrefix(std::move(prefix)), mRegisterThread(registerThread) {
}

void TaskScope::enter(const std::string& taskName) {
    if (mScope.has_value() && taskName == mTaskName &&
        ThreadUtilities::isCurrentThreadName(mDescription)) {
        return;
    }
    close();
    if (mDescription.empty() || taskName != mTaskName) {
        mTaskName = taskName;
        mDescription = mPrefix + "[" + taskName + "]";
    }
    mScope.emplace(mDescription, mRegisterThread);
}

void TaskScope::leave() noexcept {
    hint_external_input::clear();
}

void TaskScope::close() noexcept {
    mScope.reset();
}

} // namespace tarn
