#include "platform/Text.h"

#include "platform/Utf8.h"

namespace tarn::platform {

bool isValidUtf8(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        const DecodedCharacter character = decodeUtf8(text, position);
        if (!character.valid) {
            return false;
        }
        position += character.length;
    }
    return true;
}

} // namespace tarn::platform
