#include "logging/file/SessionHeader.h"

#include "platform/AppendFile.h"
#include "platform/Files.h"

#include <fstream>
#include <vector>

namespace tarn {

void saveSessionHeader(const std::string& currentLogFile, const std::string& headerFile) {
    std::ifstream log(platform::nativePath(currentLogFile), std::ios::binary);
    // Zeroed, because the read may come back short.
    std::vector<char> beginning(kSessionHeaderBytes);
    log.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    platform::AppendFile header;
    header.open(headerFile, platform::AppendFile::Existing::Emptied);
    header.write(kSessionHeaderText);
    header.write({beginning.data(), beginning.size()});
    header.close();
}

} // namespace tarn
