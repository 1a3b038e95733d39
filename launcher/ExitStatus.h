#pragma once

namespace launcher {

enum ExitStatus : int { Converted = 0, Failed = 1, NotStarted = 2, Stopped = 130 };

} // namespace launcher
