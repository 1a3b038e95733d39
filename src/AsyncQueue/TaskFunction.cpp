#include "AsyncQueue/TaskFunction.h"

#include "threading/Assertion.h"

#include <string>

namespace tarn {
namespace {

constexpr std::uint32_t kEmptyCallLine = 74;

} // namespace

void TaskFunction::operator()(CallSite where) {
    if (!mTask) {
        assertionFailed("TaskFunction", kEmptyCallLine, "operator()", "mTask",
                        "TaskFunction called when empty, it's either been moved or default "
                        "initialized. Called from File: " +
                            std::string(where.file) + " Line: " + std::to_string(where.line));
        throw std::bad_function_call();
    }
    mTask();
}

} // namespace tarn
