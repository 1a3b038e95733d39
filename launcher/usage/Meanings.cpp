#include "launcher/usage/Meanings.h"

#include "launcher/ExitStatus.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace launcher {
namespace {

constexpr std::array kStatuses = std::to_array<Meaning>({
    {static_cast<std::int32_t>(ExitStatus::Complete),
     "converted completely, or done what else was asked for"},
    {static_cast<std::int32_t>(ExitStatus::Failed),
     "that failed, or a source that was to be deleted is still there"},
    {static_cast<std::int32_t>(ExitStatus::Refused),
     "it cannot be done as given: nothing was started"},
    {static_cast<std::int32_t>(ExitStatus::Incomplete),
     "converted, but something that the recording holds is missing in the destination: the sources "
     "are kept"},
    {static_cast<std::int32_t>(ExitStatus::Stopped),
     "stopped by Ctrl-C, or by closing the window while it converts"},
});

constexpr std::array kErrors = std::to_array<Meaning>({
#include "launcher/usage/ErrorMeanings.inc"
});

} // namespace

std::span<const Meaning> statusMeanings() {
    return kStatuses;
}

std::span<const Meaning> errorMeanings() {
    return kErrors;
}

std::string explanation(std::string_view number) {
    std::int32_t wanted = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), wanted);
    if (error != std::errc() || end != number.data() + number.size()) {
        return {};
    }
    for (const auto& [meanings, name] : {std::pair(statusMeanings(), "exit status "),
                                         std::pair(errorMeanings(), "the media engine's error ")}) {
        const auto found = std::ranges::find(meanings, wanted, &Meaning::number);
        if (found != meanings.end()) {
            return name + std::to_string(wanted) + ": " + std::string(found->text);
        }
    }
    return {};
}

} // namespace launcher
