#pragma once

namespace launcher {

enum class ExitStatus {
    Complete = 0,
    Failed = 1,
    Refused = 2,    ///< cannot be carried out as given: nothing was started
    Incomplete = 3, ///< converted, but the recording holds more than the destination
    Stopped = 130,
};

} // namespace launcher
