#pragma once

#include "recordconverter/IMediaConverterCallback.h"
#include "threading/Gate.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace recordconverter {
class ConverterLog;
class MediaConverter;
} // namespace recordconverter

namespace recordconverter::app {

class LocalizationStrings;

/// The one object that QML sees. Owns the session, turns the engine's events into signals and ends
/// the process. Made with make_shared, on the GUI thread. The order of signals, slots and
/// properties is the order of the meta-object and part of the contract with the window.
class MediaConverterController : public QObject,
                                 public IMediaConverterCallback,
                                 public std::enable_shared_from_this<MediaConverterController> {
    Q_OBJECT
    Q_PROPERTY(bool isDark MEMBER isDark NOTIFY infoChanged)
    Q_PROPERTY(QString convertingStartedText MEMBER convertingStartedText NOTIFY infoChanged)
    Q_PROPERTY(QString convertingFinishedText MEMBER convertingFinishedText NOTIFY infoChanged)
    Q_PROPERTY(QString convertingErrorText MEMBER convertingErrorText NOTIFY infoChanged)

public:
    MediaConverterController();
    ~MediaConverterController() override;

    /// Reads the arguments (see EntryContext) and the texts and binds the engine. Once, after the
    /// window has loaded. Throws std::bad_weak_ptr unless a shared pointer owns this.
    void initialize(const std::vector<std::string>& arguments,
                    const std::shared_ptr<LocalizationStrings>& texts,
                    const std::shared_ptr<ConverterLog>& log);

    /// Starts the engine. The session tells its observers nothing of a start that fails, and a
    /// window that waits for ever helps nobody: that is shown as a failed conversion.
    void startConversion();

    /// Gives the reference up when no thread of the engine's is left in the controller, so that it
    /// is destroyed here and not on one of them.
    static void release(std::shared_ptr<MediaConverterController> controller);

    // On the engine's threads.
    void onConvertStarted(const std::string& destination) override;
    void onConvertProgress(float percent, const std::string& destination) override;
    void onConvertError(std::int32_t code, const std::string& destination) override;

signals:
    void convertStarted();
    /// Never emitted: progress goes to the log only.
    void convertProgress(float progress, QString recordedFile);
    void convertFinished(QString recordedFile);
    void convertError(int error, QString recordedFile);
    void infoChanged();
    /// Never emitted.
    void exitProcess();

public slots:
    /// Lets the user choose a file in the destination's folder and opens it.
    void open();
    /// Opens the destination.
    void play();
    /// Ends the process.
    void close();

private:
    void parseArguments(const std::vector<std::string>& arguments);
    void parseTheme(const std::string& argument);
    void createConverter(const std::shared_ptr<ConverterLog>& log);
    void connectExitTimer();
    static void startExitTimer(const std::weak_ptr<MediaConverterController>& self);
    void onExitTimer();
    void failConversion(std::int32_t code, const std::string& destination);
    /// Keeps the engine out of Qt from here on, and stops it where it can be stopped.
    void quieten();
    [[noreturn]] void endProcess();

    std::string engineFolder;
    std::vector<std::string> sourceFiles;
    std::string destinationFile;
    bool isDark = false;
    QString convertingStartedText;
    QString convertingFinishedText;
    QString convertingErrorText;
    std::unique_ptr<MediaConverter> converter;
    std::atomic<bool> conversionEnded = false;
    QTimer exitTimer;

    tarn::Gate mGate;
    /// Serialises the two starts of the timer. Recursive: an error that is reported on the GUI
    /// thread runs both in one call.
    std::recursive_mutex mExitTimerMutex;
    std::atomic<bool> mStarted = false;
    bool mIsQuiet = false;
    bool mIsEngineStopped = false;
};

} // namespace recordconverter::app
