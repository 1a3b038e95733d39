#include "app/MediaConverterController.h"

#include "app/LocalizationStrings.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "recordconverter/SourceList.h"
#include "recordconverter/WinMediaConverter.h"
#include "utils/FileUtils.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QUrl>

#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

namespace recordconverter::app {
namespace {

using tarn::RootLoggerLevel::Error;
using tarn::RootLoggerLevel::Info;

using namespace std::chrono_literals;

/// Passed through to the engine, which alone knows what they mean.
constexpr std::uint32_t kEngineParam1 = 3;
constexpr std::uint32_t kEngineParam2 = 4;

constexpr int kDarkTheme = 2;
/// Just short of 100: the engine sends no other word of completion.
constexpr double kCompletedPercent = 99.99999;
constexpr auto kTimeToRead = 60000ms;
/// How long the process may take to end for the engine's sake.
constexpr auto kGatePatience = 1000ms;
constexpr std::uint32_t kStopMilliseconds = 2000;

/// Reported when the engine was never started; docs/engine-contract.md lists it.
constexpr std::int32_t kNotStarted = -1;

void openOnDesktop(const QString& path) {
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        TARN_LOG(tarn::RootLoggerLevel::Warn, "Can not open: " << path.toStdString());
    }
}

} // namespace

MediaConverterController::MediaConverterController() = default;

MediaConverterController::~MediaConverterController() {
    quieten();
    if (!mIsEngineStopped && mStarted) {
        // An engine that can not be told to stop may report at any time, an ended one included: the
        // session that it reports to and its library stay until the process ends.
        TARN_LOG(Info, "The engine stays loaded: it cannot be stopped.");
        static_cast<void>(converter.release());
    }
}

void MediaConverterController::initialize(const std::vector<std::string>& arguments,
                                          const std::shared_ptr<LocalizationStrings>& texts,
                                          const std::shared_ptr<ConverterLog>& log) {
    parseArguments(arguments);
    convertingStartedText = texts->text(0);
    convertingFinishedText = texts->text(1);
    convertingErrorText = texts->text(2);
    emit infoChanged();
    if (arguments.size() == 2) {
        TARN_LOG_AT(Info, 74, "convert from: " << arguments[1]);
        TARN_LOG_AT(Info, 75, "convert to:" << destinationFile);
    }
    createConverter(log);
    connectExitTimer();
}

void MediaConverterController::parseArguments(const std::vector<std::string>& arguments) {
    if (arguments.size() > 1) {
        engineFolder = arguments[1];
    }
    if (arguments.size() > 3) {
        sourceFiles = expandSourceList(arguments[3]);
    }
    if (arguments.size() > 4) {
        destinationFile = arguments[4];
    }
    if (arguments.size() > 5) {
        parseTheme(arguments[5]);
    }
}

void MediaConverterController::parseTheme(const std::string& argument) {
    try {
        isDark = std::stoi(argument) == kDarkTheme;
    } catch (const std::logic_error&) {
        // Not a number that an int can hold: the light theme stays.
    }
    TARN_LOG_AT(Info, 152, "theme is dark:" << isDark);
    emit infoChanged();
}

void MediaConverterController::createConverter(const std::shared_ptr<ConverterLog>& log) {
    converter =
        std::make_unique<WinMediaConverter>(engineFolder, sourceFiles, destinationFile, log);
    converter->addObserver(std::weak_ptr<IMediaConverterCallback>(shared_from_this()));
    converter->loadEngine();
}

void MediaConverterController::connectExitTimer() {
    exitTimer.setTimerType(Qt::PreciseTimer); // a coarse one may end up to 5 % before its time
    // Emitted on the engine's threads, so both run later, here on the GUI thread.
    const auto start = [self = weak_from_this()] { startExitTimer(self); };
    connect(this, &MediaConverterController::convertFinished, this, start);
    connect(this, &MediaConverterController::convertError, this, start);
    connect(
        &exitTimer, &QTimer::timeout, this, [this] { onExitTimer(); }, Qt::DirectConnection);
}

void MediaConverterController::startExitTimer(const std::weak_ptr<MediaConverterController>& self) {
    TARN_LOG_AT(Info, 81, "start exit timer");
    if (const auto controller = self.lock()) {
        const std::lock_guard lock(controller->mExitTimerMutex);
        controller->exitTimer.setInterval(kTimeToRead);
        controller->exitTimer.start();
    }
}

void MediaConverterController::onExitTimer() {
    TARN_LOG_AT(Info, 94, "exit timer timeout");
    endProcess();
}

void MediaConverterController::startConversion() {
    converter->startConvert(sourceFiles, destinationFile, kEngineParam1, kEngineParam2);
    if (!mStarted && !conversionEnded) {
        failConversion(kNotStarted, destinationFile);
    }
}

void MediaConverterController::onConvertStarted(const std::string& destination) {
    TARN_LOG_AT(Info, 105, "converting starting:" << destination);
    mStarted = true;
    mGate.pass([this] { emit convertStarted(); });
}

void MediaConverterController::onConvertProgress(float percent, const std::string& destination) {
    TARN_LOG_AT(Info, 111, "progress: " << percent << "%");
    if (static_cast<double>(percent) >= kCompletedPercent) {
        TARN_LOG_AT(Info, 114, "recording convert completed");
        conversionEnded.exchange(true);
        mGate.pass([&] { emit convertFinished(QString::fromStdString(destination)); });
    }
}

void MediaConverterController::onConvertError(std::int32_t code, const std::string& destination) {
    failConversion(code, destination);
}

void MediaConverterController::failConversion(std::int32_t code, const std::string& destination) {
    conversionEnded.exchange(true);
    TARN_LOG_AT(Error, 123, "recording convert error:" << destination << ", error code:" << code);
    mGate.pass([&] {
        // The start on the GUI thread waits for the one here. Were it the other way round, this
        // one, on a thread that the timer does not belong to, would make a running timer forget its
        // number, and the process would never end.
        const std::lock_guard lock(mExitTimerMutex);
        emit convertError(code, QString::fromStdString(destination));
        if (!exitTimer.isActive()) {
            exitTimer.start();
        }
    });
}

void MediaConverterController::open() {
    const QString folder =
        QString::fromStdString(tarn::FileUtils().directoryOfPath(destinationFile));
    const QString chosen =
        QFileDialog::getOpenFileName(nullptr, QStringLiteral("Open File"), folder,
                                     QStringLiteral("All Files (*.*);;Text Files (*.mp4)"));
    if (chosen.isEmpty()) {
        return;
    }
    TARN_LOG_AT(Info, 177, "Open Dir:" << chosen.toStdString());
    openOnDesktop(chosen);
}

void MediaConverterController::play() {
    TARN_LOG_AT(Info, 185, "Open File:" << destinationFile);
    openOnDesktop(QString::fromStdString(destinationFile));
}

void MediaConverterController::close() {
    TARN_LOG_AT(Info, 191, "Close convert recording");
    endProcess();
}

void MediaConverterController::quieten() {
    if (std::exchange(mIsQuiet, true)) {
        return;
    }
    mGate.close(kGatePatience);
    if (auto* const bound = dynamic_cast<WinMediaConverter*>(converter.get())) {
        mIsEngineStopped = bound->stopConversions(kStopMilliseconds);
    }
}

// The caller's reference comes in here and goes when this ends, hence by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void MediaConverterController::release(std::shared_ptr<MediaConverterController> controller) {
    controller->quieten();
    const auto deadline = std::chrono::steady_clock::now() + kGatePatience;
    while (controller.use_count() > 1 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(1ms);
    }
}

void MediaConverterController::endProcess() {
    quieten();
    // Bounded by the logger itself: the last lines are in the file before its thread goes.
    tarn::RootLogger::getInstance().flush();
    std::exit(0); // NOLINT(concurrency-mt-unsafe): only the window's thread gets here
}

} // namespace recordconverter::app
