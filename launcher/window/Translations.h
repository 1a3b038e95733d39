#pragma once

#include <string>

namespace launcher {

/// Puts the translations that come with the runtime folder where the window looks for them, as the
/// client does with what it fetches for itself. Without them the window speaks English.
void placeTranslations(const std::string& runtimeFolder);

} // namespace launcher
