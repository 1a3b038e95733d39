#pragma once

#include "platform/Identity.h"
#include "platform/Text.h"

#include <string>

namespace tarn::platform::testing {

/// A path below the folder that this test program and its libraries lie in.
inline std::wstring besideProgram(const std::wstring& name) {
    const std::wstring program = toWide(programFile());
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

} // namespace tarn::platform::testing
