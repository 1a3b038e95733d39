#include "logging/RootLogger.h"

#include "AsyncQueue/AsyncQueue.h"
#include "log/LogCall.h"
#include "logging/LogOutput.h"
#include "logging/RecordStream.h"
#include "logging/Scrubber.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace tarn {
namespace {

constexpr std::uint32_t kAtTheBack = 0;
constexpr std::uint32_t kAtTheFront = 1;
constexpr std::uint32_t kTaskType = 0;
constexpr std::size_t kShortestBlockedString = 3;
constexpr std::chrono::seconds kLongestFlush{5};

/// Lets a thread wait for a task. Shared with the task, which may outlive the wait.
struct FlushContext {
    std::condition_variable condition;
    std::mutex mutex;
    bool isDone = false;

    void finish() {
        const std::lock_guard lock(mutex);
        isDone = true;
        condition.notify_all();
    }
};

} // namespace

RootLogger::RootLogger(const std::shared_ptr<IAsyncQueue>& queue)
    : mOutput(std::make_unique<LogOutput>()),
      mRecords(std::make_unique<RecordStream>()),
      mQueue(queue != nullptr ? queue : std::make_shared<AsyncQueue>("RootLogger", false)) {
}

RootLogger::~RootLogger() = default;

RootLogger& RootLogger::getInstance(const std::shared_ptr<IAsyncQueue>& queue) {
    // Never destroyed: its worker and the threads that log may outlive the static objects.
    static RootLogger& instance = create(queue);
    return instance;
}

RootLogger& RootLogger::create(const std::shared_ptr<IAsyncQueue>& queue) {
    auto& logger = *new RootLogger(queue);
    setDefaultLogHook(
        [](std::string_view message, RootLoggerLevel::Level level, int line, std::string_view file,
           std::string_view function) { log(message, level, line, file, function, {}); },
        [](RootLoggerLevel::Level level) noexcept { return getInstance().isEnabled(level); });
    return logger;
}

void RootLogger::init(std::shared_ptr<ILogger> fileLogger, std::shared_ptr<ILogger> engineLogger,
                      std::string logFolder) {
    registerLogger(std::move(fileLogger));
    if (engineLogger != nullptr) {
        mOutput->setEngineSink(std::move(engineLogger));
    }
    mLogFolder = std::move(logFolder);
}

void RootLogger::registerLogger(std::shared_ptr<ILogger> logger) {
    if (logger == nullptr) {
        return;
    }
    postInOrder("registerLogger", TaskFunction([this, logger = std::move(logger)]() mutable {
                    mOutput->addSink(std::move(logger));
                    mActive.store(true);
                }));
}

/// After the records that were logged before, and ahead of those that are logged after it.
void RootLogger::postInOrder(const std::string& name, TaskFunction&& task) {
    mRecords->closeBatch();
    mQueue->post(name, std::move(task), kAtTheBack, kTaskType);
}

void RootLogger::setLogLevel(RootLoggerLevel::Level level) {
    if (level == RootLoggerLevel::Unknown) {
        return;
    }
    TARN_LOG(RootLoggerLevel::Info, "Setting Log level to " << RootLoggerLevel::levelText(level));
    mLevels.setThreshold(level);
}

void RootLogger::setUseLocalTime(bool uses) noexcept {
    mOutput->setUseLocalTime(uses);
}

bool RootLogger::isEnabled(RootLoggerLevel::Level level) const noexcept {
    return mLevels.isEnabled(level);
}

void RootLogger::log(std::string_view message, RootLoggerLevel::Level level, std::int32_t line,
                     std::string_view file, std::string_view function,
                     std::string_view tag) noexcept {
    try {
        getInstance().capture(message, level, line, file, function, tag);
    } catch (...) {
        // A record that cannot be queued is dropped: logging never throws to its caller.
        return;
    }
}

void RootLogger::capture(std::string_view message, RootLoggerLevel::Level level, std::int32_t line,
                         std::string_view file, std::string_view function, std::string_view tag) {
    if (!isEnabled(level) || !mActive.load()) {
        return;
    }
    static const std::string& taskName = *new std::string("doLog"); // threads log at exit, too
    std::string longName;
    const auto record = LogRecord::capture(message, level, line, file, function, tag, longName);
    mRecords->add(record, [this](const RecordStream::BatchPointer& batch) {
        mQueue->post(taskName, TaskFunction([this, batch] { writeBatch(*batch); }), kAtTheBack,
                     kTaskType);
    });
}

void RootLogger::writeBatch(RecordStream::Batch& batch) {
    mRecords->drain(batch, [this](const LogRecord& record) {
        // A string that is blocked meanwhile counts for the rest of the batch.
        if (mMustAddBlockedStrings.load(std::memory_order_acquire)) {
            addBlockedStrings();
        }
        mOutput->write(record);
    });
}

void RootLogger::blockListString(std::string text) {
    if (text.size() < kShortestBlockedString) {
        TARN_LOG(RootLoggerLevel::Debug,
                 "Attempting to add a string below minimum length to blocklist! Length: "
                     << text.size());
        return;
    }
    {
        const std::lock_guard lock(mBlockedMutex);
        mToBeBlocked.push_back(std::move(text));
        mMustAddBlockedStrings.store(true, std::memory_order_release);
    }
    // At the front, so that records that wait are masked, too.
    mQueue->post("blockListString", TaskFunction([this] { addBlockedStrings(); }), kAtTheFront,
                 kTaskType);
}

void RootLogger::addBlockedStrings() {
    std::vector<std::string> texts;
    {
        const std::lock_guard lock(mBlockedMutex);
        texts.swap(mToBeBlocked);
        mMustAddBlockedStrings.store(false, std::memory_order_relaxed);
    }
    for (std::string& text : texts) {
        const std::size_t length = text.size();
        if (mOutput->addBlockedString(std::move(text))) {
            TARN_LOG(RootLoggerLevel::Debug, "Adding blocklisted string of length: " << length);
        }
    }
}

std::string RootLogger::filterStrings(const std::string& text) {
    std::string filtered = text;
    if (mQueue->isQueueThread()) {
        mOutput->scrub(filtered);
        return filtered;
    }
    FlushContext context;
    postInOrder("filterStrings", TaskFunction([&] {
                    try {
                        mOutput->scrub(filtered);
                    } catch (...) {
                        filtered = Scrubber::kMask; // for want of memory: rather all than nothing
                    }
                    context.finish();
                }));
    std::unique_lock lock(context.mutex);
    context.condition.wait(lock, [&] { return context.isDone; });
    return filtered;
}

void RootLogger::flush() {
    if (mQueue->isQueueThread()) {
        mOutput->flush();
        return;
    }
    const auto context = std::make_shared<FlushContext>();
    std::unique_lock lock(context->mutex);
    postInOrder("flush", TaskFunction([this, context] {
                    mOutput->flush();
                    context->finish();
                }));
    context->condition.wait_for(lock, kLongestFlush, [&] { return context->isDone; });
}

} // namespace tarn
