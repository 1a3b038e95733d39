#pragma once

#include "platform/Library.h"

namespace recordconverter {

/// Unloads a library and logs the outcome; a failure changes nothing else.
void unloadAndLog(tarn::platform::LibraryHandle library);

} // namespace recordconverter
