#include "platform/OpenFolder.h"

#include <random>

namespace tarn::platform {

std::string unforeseeableName(const std::string& prefix) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::random_device random;
    std::string name = prefix;
    for (int digit = 0; digit < 16; ++digit) {
        name += kDigits[random() % kDigits.size()];
    }
    return name;
}

} // namespace tarn::platform
