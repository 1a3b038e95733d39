#include "logging/SessionHeader.h"

#include "platform/Files.h"

#include <fstream>
#include <vector>

namespace tarn {

void saveSessionHeader(const std::string& currentLogFile, const std::string& headerFile) {
    std::ifstream log(platform::nativePath(currentLogFile), std::ios::binary);
    std::ofstream header(platform::nativePath(headerFile), std::ios::binary | std::ios::trunc);
    // Zeroed, because the read may come back short.
    std::vector<char> beginning(kSessionHeaderBytes);
    log.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    header << kSessionHeaderText;
    header.write(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    header.close();
}

} // namespace tarn
