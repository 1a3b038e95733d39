#include "support/ProcessRunner.h"

namespace tarn::testing {

ProcessResult runProcess(const Process::Start& start) {
    Process process(start);
    ProcessResult result;
    result.status = process.wait().value_or(-1);
    result.output = process.output();
    result.errors = process.errors();
    return result;
}

} // namespace tarn::testing
