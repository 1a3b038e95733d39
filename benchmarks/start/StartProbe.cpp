// start-probe ours SOURCE DESTINATION | theirs: prints the time to the first frame and ends at it.
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>
#include <QtWidgets/QApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::chrono::steady_clock::time_point begin;

void reportFirstFrame() {
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - begin;
    std::printf("milliseconds to the first frame: %.3f\n", passed.count());
    std::fflush(stdout);
    // Nothing of what follows is measured, a running conversion included.
    _exit(0);
}

/// Sees every window that is shown, whoever made it.
class WindowWatch : public QObject {
public:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* window =
            event->type() == QEvent::Show ? qobject_cast<QQuickWindow*>(object) : nullptr;
        if (window != nullptr) {
            connect(window, &QQuickWindow::frameSwapped, this, &reportFirstFrame,
                    Qt::DirectConnection);
        }
        return false;
    }
};

void watchWindows() {
    QCoreApplication::instance()->installEventFilter(new WindowWatch);
}

int runOurs(const char* source, const char* destination) {
    void* library = dlopen(RECORD_CONVERTER_PRODUCT, RTLD_NOW);
    using EntryPoint = int (*)(int, wchar_t**);
    const auto entryPoint = library == nullptr
                                ? nullptr
                                : reinterpret_cast<EntryPoint>(dlsym(library, "TarnEntryPoint"));
    if (entryPoint == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    std::vector<std::wstring> texts;
    for (const std::string text :
         {"start-probe", RECORD_CONVERTER_RUNTIME, "", source, destination, "1"}) {
        texts.emplace_back(text.begin(), text.end());
    }
    std::vector<wchar_t*> arguments;
    for (std::wstring& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    begin = std::chrono::steady_clock::now();
    return entryPoint(static_cast<int>(texts.size()), arguments.data());
}

int runTheirs(int argc, char** argv) {
    begin = std::chrono::steady_clock::now();
    qputenv("QT_QUICK_CONTROLS_STYLE", "Basic");
    const QApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/BareWindow.qml")));
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    qAddPreRoutine(watchWindows);
    if (argc == 4 && std::string(argv[1]) == "ours") {
        return runOurs(argv[2], argv[3]);
    }
    return runTheirs(argc, argv);
}
