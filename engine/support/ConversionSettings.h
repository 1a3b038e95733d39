#pragma once

#include <string_view>

namespace zelcore {

/// How pictures are encoded that cannot be copied.
enum class PictureQuality { Small, Normal, High };

/// What the caller may choose beside the sources and the destination.
struct ConversionSettings {
    PictureQuality quality = PictureQuality::Normal;
    bool isIndexInFront = false;
};

/// What ZelConversionSetting takes, for the conversions that start afterwards; false when there is
/// no such setting or value. Any thread.
bool changeSetting(std::string_view name, std::string_view value);
ConversionSettings currentSettings();

} // namespace zelcore
