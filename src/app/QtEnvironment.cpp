#include "app/QtEnvironment.h"

#include "log/LogCall.h"
#include "platform/Library.h"
#include "platform/Text.h"

#include <QCoreApplication>
#include <QDir>
#include <QQmlEngine>
#include <QtGlobal>

#include <optional>
#include <utility>

namespace recordconverter::app {
namespace {

using tarn::RootLoggerLevel::Info;
using tarn::RootLoggerLevel::Warn;

constexpr std::size_t kRuntimeFolder = 1;

using Variables = std::vector<std::pair<const char*, std::optional<QByteArray>>>;

/// What the variables that are changed here held before, in the order of the changes.
Variables& originals() {
    static auto& variables = *new Variables;
    return variables;
}

void keepOriginal(const char* name) {
    originals().emplace_back(
        name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
}

void unset(const char* name) {
    keepOriginal(name);
    qunsetenv(name);
}

void set(const char* name, const QByteArray& value) {
    keepOriginal(name);
    qputenv(name, value);
}

QString runtimeFolder(const std::vector<std::string>& arguments) {
    return QString::fromStdString(arguments[kRuntimeFolder]);
}

QString moduleFolder(const std::vector<std::string>& arguments) {
    return QDir::cleanPath(runtimeFolder(arguments) + QDir::separator() + QStringLiteral("qml"));
}

void useRuntimeFolder(const std::vector<std::string>& arguments) {
    const QString folder = runtimeFolder(arguments);
    QCoreApplication::setLibraryPaths({folder});
    // Not the dynamic-dependencies folder of the install location: nothing of ours lies there, and
    // a folder that is searched is one more place where a foreign library would be loaded from.
    if (!tarn::platform::addLibraryFolder(tarn::platform::toWide(arguments[kRuntimeFolder]))) {
        TARN_LOG(Warn, "Can not add the runtime folder to the library folders, errorCode: "
                           << tarn::platform::lastError());
    }
    const QString importPath = QDir::cleanPath(folder) + QDir::listSeparator() +
                               QDir::cleanPath(QStringLiteral(":/qt/qml")) + QDir::listSeparator() +
                               moduleFolder(arguments);
    set("QML_IMPORT_PATH", importPath.toUtf8());
    set("QT_QUICK_CONTROLS_STYLE", "Basic");
}

} // namespace

void prepareQtEnvironment(const std::vector<std::string>& arguments) {
    for (const char* const name :
         {"QTDIR", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH", "QTWEBENGINE_REMOTE_DEBUGGING",
          "QML2_IMPORT_PATH",
          // A style that is not shipped keeps the window from loading.
          "QT_STYLE_OVERRIDE", "QT_QUICK_CONTROLS_CONF", "QT_QUICK_CONTROLS_FALLBACK_STYLE"}) {
        unset(name);
    }
    // Qt ends the process for want of a plugin that draws.
    for (const char* const name : {"QT_QUICK_BACKEND", "QMLSCENE_DEVICE"}) {
        const QByteArray backend = qgetenv(name);
        if (backend != "" && backend != "rhi" && backend != "software") {
            unset(name);
        }
    }
    set("QT_LOGGING_RULES", "*.info=true;");
    // The process ends by exit() with the window open: no thread of Qt's may be drawing then. Also,
    // the threaded loop counts frames instead of time where the display has no refresh to wait for.
    set("QSG_RENDER_LOOP", "basic");
    if (arguments.size() > kRuntimeFolder) {
        useRuntimeFolder(arguments);
    }
}

void restoreEnvironment() {
    for (const auto& [name, value] : std::exchange(originals(), {})) {
        value ? qputenv(name, *value) : qunsetenv(name);
    }
}

void limitLibraryPaths(const std::vector<std::string>& arguments) {
    if (arguments.size() > kRuntimeFolder) {
        QCoreApplication::setLibraryPaths({runtimeFolder(arguments)});
    }
}

void limitImportPaths(QQmlEngine& engine, const std::vector<std::string>& arguments) {
    if (arguments.size() > kRuntimeFolder) {
        // Searched in this order. Stated anew rather than picked out of Qt's list: where ':'
        // separates, Qt reads ":/qt/qml" in the environment variable as the folder /qt/qml.
        engine.setImportPathList({QDir::cleanPath(runtimeFolder(arguments)),
                                  QStringLiteral("qrc:/qt/qml"), moduleFolder(arguments),
                                  QStringLiteral("qrc:/qt-project.org/imports")});
    }
}

void logQtEnvironment() {
    // Without an application object Qt answers with an empty path and a warning on standard error.
    const QString programFolder = QCoreApplication::instance() != nullptr
                                      ? QCoreApplication::applicationDirPath()
                                      : QString();
    TARN_LOG(Info, "QTDIR:" << qgetenv("QTDIR").toStdString() << ", qtPluginPath:"
                            << qgetenv("QT_PLUGIN_PATH").toStdString() << ", qtPlatformPluginPath:"
                            << qgetenv("QT_QPA_PLATFORM_PLUGIN_PATH").toStdString()
                            << ", currentPath:" << QDir::currentPath().toStdString()
                            << ", appPath:" << programFolder.toStdString());
}

} // namespace recordconverter::app
