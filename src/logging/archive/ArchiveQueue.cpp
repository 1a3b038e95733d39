#include "logging/archive/ArchiveQueue.h"

#include "AsyncQueue/AsyncQueue.h"

namespace tarn {
namespace {

constexpr std::uint32_t kAtTheBack = 0;
constexpr std::uint32_t kTaskType = 0;

} // namespace

FileLogger::ArchiveExecutor makeArchiveQueue() {
    return [queue = std::make_shared<AsyncQueue>("LogArchive", true)](FileLogger::Job job) {
        queue->post("archiveLogs", TaskFunction(std::move(job)), kAtTheBack, kTaskType);
    };
}

} // namespace tarn
