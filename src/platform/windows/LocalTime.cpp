#include "platform/LocalTime.h"

namespace tarn::platform {

std::tm localTime(std::time_t time) {
    std::tm result{};
    return localtime_s(&result, &time) == 0 ? result : std::tm{};
}

} // namespace tarn::platform
