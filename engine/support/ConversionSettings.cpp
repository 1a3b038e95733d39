#include "engine/support/ConversionSettings.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace zelcore {

namespace {

struct Setting {
    std::string_view name;
    std::string_view value;
    void (*apply)(ConversionSettings& settings);
};

constexpr std::array<Setting, 5> kSettings{{
    {"fast-start", "on", [](ConversionSettings& all) { all.isIndexInFront = true; }},
    {"fast-start", "off", [](ConversionSettings& all) { all.isIndexInFront = false; }},
    {"quality", "small", [](ConversionSettings& all) { all.quality = PictureQuality::Small; }},
    {"quality", "normal", [](ConversionSettings& all) { all.quality = PictureQuality::Normal; }},
    {"quality", "high", [](ConversionSettings& all) { all.quality = PictureQuality::High; }},
}};

std::atomic<ConversionSettings> current{};
static_assert(decltype(current)::is_always_lock_free);

} // namespace

bool changeSetting(std::string_view name, std::string_view value) {
    const auto* const found = std::ranges::find_if(
        kSettings, [&](const Setting& each) { return each.name == name && each.value == value; });
    if (found == kSettings.end()) {
        return false;
    }
    ConversionSettings changed = current;
    found->apply(changed);
    current = changed;
    return true;
}

ConversionSettings currentSettings() {
    return current;
}

} // namespace zelcore
