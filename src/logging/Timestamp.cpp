#include "logging/Timestamp.h"

#include "platform/LocalTime.h"

#include <chrono>
#include <cstdlib>

namespace tarn {
namespace {

void appendNumber(std::string& text, int value, int digits) {
    const std::string number = std::to_string(value);
    for (int missing = digits - static_cast<int>(number.size()); missing > 0; --missing) {
        text += '0';
    }
    text += number;
}

std::chrono::seconds distanceFromUtc(std::time_t time) {
    using namespace std::chrono;
    const std::tm local = platform::localTime(time);
    const year_month_day date(year(local.tm_year + 1900), month(unsigned(local.tm_mon) + 1),
                              day(unsigned(local.tm_mday)));
    return sys_days(date).time_since_epoch() + hours(local.tm_hour) + minutes(local.tm_min) +
           seconds(local.tm_sec) - seconds(time);
}

} // namespace

std::string timestampText(std::time_t time, bool isLocal) {
    if (time < 0) {
        return {};
    }
    const std::chrono::seconds distance = isLocal ? distanceFromUtc(time) : std::chrono::seconds(0);
    const std::chrono::sys_seconds moment{std::chrono::seconds{time} + distance};
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
    append(clock.seconds().count(), 2, isLocal ? (distance.count() < 0 ? '-' : '+') : 'Z');
    if (isLocal) {
        const auto minutes = std::abs(distance.count()) / 60;
        appendNumber(text, static_cast<int>(minutes / 60 * 100 + minutes % 60), 4);
    }
    return text;
}

} // namespace tarn
