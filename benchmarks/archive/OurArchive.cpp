#include "archive/OurArchive.h"

#include "logging/file/FileLogger.h"
#include "utils/FileUtils.h"

#include <memory>
#include <stdexcept>

namespace benchmarks {

std::filesystem::path archiveByFileLogger(
    const std::filesystem::path& destination,
    const std::vector<std::pair<std::string, std::string>>& files) {
    const auto fileUtils = std::make_shared<tarn::FileUtils>();
    const auto logger =
        std::make_shared<tarn::FileLogger>(destination.string(), 100, fileUtils, nullptr, true);
    logger->archiveLogs(fileUtils, destination.string(), files);
    for (const auto& entry : std::filesystem::directory_iterator(destination)) {
        if (entry.path().extension() == ".zip") {
            return entry.path();
        }
    }
    throw std::runtime_error("no archive in " + destination.string());
}

} // namespace benchmarks
