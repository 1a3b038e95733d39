#pragma once

#include <string>
#include <vector>

namespace launcher {

/// The whole program. `arguments` are UTF-8, the program's own name first. Returns the exit status.
int runLauncher(const std::vector<std::string>& arguments);

} // namespace launcher
