#include "logging/Timestamp.h"

#include <chrono>

namespace tarn {
namespace {

void appendNumber(std::string& text, int value, int digits) {
    const std::string number = std::to_string(value);
    for (int missing = digits - static_cast<int>(number.size()); missing > 0; --missing) {
        text += '0';
    }
    text += number;
}

} // namespace

std::string timestampText(std::time_t time) {
    if (time < 0) {
        return {};
    }
    const std::chrono::sys_seconds moment{std::chrono::seconds{time}};
    const auto midnight = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date{midnight};
    const std::chrono::hh_mm_ss clock{moment - midnight};
    std::string text;
    const auto append = [&](auto value, int digits, char after) {
        appendNumber(text, static_cast<int>(value), digits);
        text += after;
    };
    append(static_cast<int>(date.year()), 4, '-');
    append(static_cast<unsigned>(date.month()), 2, '-');
    append(static_cast<unsigned>(date.day()), 2, 'T');
    append(clock.hours().count(), 2, ':');
    append(clock.minutes().count(), 2, ':');
    append(clock.seconds().count(), 2, 'Z');
    return text;
}

} // namespace tarn
