#include "platform/LocalTime.h"

namespace tarn::platform {

std::tm localTime(std::time_t time) {
    std::tm result{};
    return localtime_r(&time, &result) != nullptr ? result : std::tm{};
}

} // namespace tarn::platform
