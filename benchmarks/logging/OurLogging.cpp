#include "logging/OurLogging.h"

#include "client/LogLocations.h"
#include "logging/RootLogger.h"
#include "logging/file/FileLogger.h"
#include "utils/FileUtils.h"

namespace benchmarks {
namespace {

/// In the file logger's unit of 500,000 bytes: 5 GB.
constexpr std::int64_t kNeverSwitched = 10'000;

} // namespace

OurLogging::OurLogging(const std::string& folder, const std::vector<std::string>& blocklist)
    : mPath(folder + "/" + tarn::currentLogFileName()),
      mQueue(std::make_shared<tarn::AsyncQueue>("RootLogger", false)) {
    const auto fileLogger = std::make_shared<tarn::FileLogger>(
        folder, kNeverSwitched, std::make_shared<tarn::FileUtils>(), nullptr, true);
    fileLogger->start(true);
    auto& logger = tarn::RootLogger::getInstance(mQueue);
    logger.init(fileLogger, nullptr, folder);
    for (const std::string& secret : blocklist) {
        logger.blockListString(secret);
    }
    logger.setLogLevel(tarn::RootLoggerLevel::Info);
    logger.flush();
}

void OurLogging::drain() {
    // A flush gives up after five seconds; this waits as long as it takes.
    tarn::RootLogger::getInstance().filterStrings({});
    tarn::RootLogger::getInstance().flush();
}

} // namespace benchmarks
