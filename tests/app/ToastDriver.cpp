// Runs the product library as the client's launcher does, and acts as its user:
//
//   toast_driver LIBRARY ACTIONS RUNTIME_FOLDER "" SOURCES DESTINATION [THEME]
//
// The actions, separated by blanks, run in order on the GUI thread, each as soon as it can:
// await=VIEW until it is shown, after=N milliseconds, escape the key, close the controller's slot,
// quit the event loop, print the window and its views, modules the files that the process has
// mapped.
//
// Built as a library to be preloaded, it acts in the launcher: the actions are in TOAST_USER.

#include "platform/Library.h"
#include "platform/Text.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>

#include <fstream>
#include <iostream>

namespace {

QStringList actions;
bool hasReturned = false;

QQuickWindow* toast() {
    return qobject_cast<QQuickWindow*>(QGuiApplication::topLevelWindows().value(0));
}

bool isOnScreen() {
    return toast()->screen()->geometry().contains(toast()->geometry());
}

void print() {
    std::cout << "window " << toast()->isExposed() << ' ' << toast()->opacity() << ' '
              << isOnScreen() << std::endl;
    for (const char* const name : {"viewStart", "viewFinish", "viewError"}) {
        const auto* const view = toast()->findChild<QQuickItem*>(name);
        std::cout << name << ' ' << view->isVisible() << ' '
                  << view->property("message").toString().toStdString() << std::endl;
    }
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
    if (name == "await") {
        return toast()->findChild<QQuickItem*>(value)->isVisible();
    }
    if (name == "escape") {
        QTest::keyClick(toast(), Qt::Key_Escape);
    } else if (name == "close") {
        QMetaObject::invokeMethod(
            qmlContext(toast())->contextProperty("mediaConverterController").value<QObject*>(),
            "close");
    } else if (name == "quit") {
        QCoreApplication::quit();
    } else if (name == "print") {
        // Its place follows its width an event later.
        if (!isOnScreen() && sinceLast.elapsed() < 5000) {
            return false;
        }
        print();
    } else if (name == "modules") {
        std::cout << std::ifstream("/proc/self/maps").rdbuf() << std::endl;
    } else {
        qFatal("unknown action");
    }
    return true;
}

void actAsUser() {
    static QElapsedTimer sinceLast;
    sinceLast.start();
    auto* const timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, [] {
        if (!actions.isEmpty() && perform(actions.constFirst(), sinceLast)) {
            actions.removeFirst();
            sinceLast.restart();
        }
    });
    timer->start(1);
}

#ifdef TOAST_USER
[[maybe_unused]] const bool isTakenOver = [] {
    actions = QString::fromLocal8Bit(qgetenv("TOAST_USER")).split(' ', Qt::SkipEmptyParts);
    qAddPreRoutine(actAsUser);
    return true;
}();
#endif

} // namespace

#ifdef __SANITIZE_ADDRESS__
// exit() from under the running QML engine tears nothing down, and the leak check does not look
// into the engine's heap, which holds much of the rest. Whoever returns is checked.
extern "C" [[gnu::visibility("default")]] int __lsan_is_turned_off() {
    return hasReturned ? 0 : 1;
}
#endif

#ifndef TOAST_USER
int main(int argc, char** argv) {
    using namespace tarn;

    actions = QString(argv[2]).split(' ', Qt::SkipEmptyParts);
    std::vector<std::wstring> texts{platform::toWide(argv[0])};
    for (int index = 3; index < argc; ++index) {
        texts.push_back(platform::toWide(argv[index]));
    }
    std::vector<wchar_t*> arguments;
    for (std::wstring& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);

    auto* const library = platform::loadWithAlteredSearchPath(platform::toWide(argv[1]));
    if (library == nullptr) {
        std::cerr << "can not load " << argv[1] << std::endl;
        return 99;
    }
    const auto entry =
        reinterpret_cast<int (*)(int, wchar_t**)>(platform::findSymbol(library, "TarnEntryPoint"));
    qAddPreRoutine(actAsUser);
    const int result = entry(static_cast<int>(texts.size()), arguments.data());
    hasReturned = true;
    std::cout << "returned " << result << std::endl;
    return result;
}
#endif
