// Runs the product library as the client's launcher does, and acts as its user. No test by itself.
//
//   toast_driver LIBRARY ACTION... -- RUNTIME_FOLDER "" SOURCES DESTINATION [THEME]
//
// Actions run in order on the GUI thread, each as soon as it can:
//   await=NAME     waits until a view is shown and has stopped sliding
//   shown=NAME     waits until a view is shown
//   after=N        waits N milliseconds, counted from the action before
//   key=NAME       presses a key in the window, "Escape"
//   close, quit    the controller's slot; the end of the event loop
//   print          writes the visible views and the toast's texts to standard output
//   modules        writes the files of Qt's that are loaded to standard output

#include "platform/Library.h"
#include "platform/Text.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeySequence>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <fstream>
#include <set>

namespace {

QStringList actions;
bool hasReturned = false;

QQuickWindow* toast() {
    for (QWindow* const window : QGuiApplication::topLevelWindows()) {
        if (window->title() == "Obrix") {
            return qobject_cast<QQuickWindow*>(window);
        }
    }
    return nullptr;
}

void print() {
    for (const char* const name : {"viewStart", "viewFinish", "viewError"}) {
        const QQuickItem* const view = toast()->findChild<QQuickItem*>(name);
        std::printf("%s %d %s\n", name, view->isVisible(),
                    qPrintable(view->property("message").toString()));
    }
    std::fflush(stdout);
}

/// The files that the process has mapped, links resolved. Nothing where the system has no list.
void printModules() {
    std::set<std::string> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (const std::size_t path = line.find('/'); path != std::string::npos) {
            files.insert(line.substr(path));
        }
    }
    for (const std::string& file : files) {
        std::puts(file.c_str());
    }
    std::fflush(stdout);
}

/// False: not yet.
bool perform(const QString& action, const QElapsedTimer& sinceLast) {
    const QString name = action.section('=', 0, 0);
    const QString value = action.section('=', 1);
    if (name == "after") {
        return sinceLast.elapsed() >= value.toInt();
    }
    if (toast() == nullptr) {
        return false;
    }
    if (name == "await" || name == "shown") {
        const QQuickItem* const view = toast()->findChild<QQuickItem*>(value);
        return view->isVisible() && (name == "shown" || view->y() == 200);
    }
    if (name == "key") {
        QTest::keyClick(toast(), Qt::Key(QKeySequence(value)[0].key()));
    } else if (name == "close") {
        QObject* const controller =
            qmlContext(toast())->contextProperty("mediaConverterController").value<QObject*>();
        QMetaObject::invokeMethod(controller, "close");
    } else if (name == "quit") {
        QCoreApplication::quit();
    } else if (name == "print") {
        print();
    } else if (name == "modules") {
        printModules();
    } else {
        qFatal("unknown action");
    }
    return true;
}

void actAsUser() {
    auto* const timer = new QTimer(QCoreApplication::instance());
    auto sinceLast = std::make_shared<QElapsedTimer>();
    sinceLast->start();
    QObject::connect(timer, &QTimer::timeout, [timer, sinceLast] {
        if (actions.isEmpty()) {
            timer->stop();
        } else if (perform(actions.constFirst(), *sinceLast)) {
            actions.removeFirst();
            sinceLast->restart();
        }
    });
    timer->start(1);
}

} // namespace

#ifdef __SANITIZE_ADDRESS__
// The window's buttons and the timer end the process by exit() from under the running QML engine:
// nothing is torn down then, and the engine's heap, which holds much of the rest, is no memory that
// the leak check looks into. Whoever returns has torn everything down, and is checked.
extern "C" [[gnu::visibility("default")]] int __lsan_is_turned_off() {
    return hasReturned ? 0 : 1;
}
#endif

int main(int argc, char** argv) {
    using namespace tarn;

    std::vector<std::wstring> arguments{platform::toWide(argv[0])};
    int index = 2;
    for (; index < argc && argv[index] != std::string("--"); ++index) {
        actions << QString::fromUtf8(argv[index]);
    }
    for (++index; index < argc; ++index) {
        arguments.push_back(platform::toWide(argv[index]));
    }
    std::vector<wchar_t*> vector;
    for (std::wstring& argument : arguments) {
        vector.push_back(argument.data());
    }
    vector.push_back(nullptr);

    const auto library = platform::loadWithAlteredSearchPath(platform::toWide(argv[1]));
    const auto entry = reinterpret_cast<int (*)(int, wchar_t**)>(
        library != nullptr ? platform::findSymbol(library, "TarnEntryPoint") : nullptr);
    if (entry == nullptr) {
        std::fprintf(stderr, "can not load %s\n", argv[1]);
        return 99;
    }
    qAddPreRoutine(actAsUser);
    const int result = entry(static_cast<int>(arguments.size()), vector.data());
    hasReturned = true;
    std::printf("returned %d\n", result);
    return result < 0 ? 98 : result;
}
