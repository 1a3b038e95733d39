#include "app/Toast.h"

#include <QQmlContext>

namespace recordconverter::app::test {
namespace {

QStringList* currentWarnings = nullptr;

void keepWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && currentWarnings != nullptr) {
        *currentWarnings << message;
    }
}

} // namespace

Toast::Toast(const QLocale& locale, bool dark) {
    currentWarnings = &warnings;
    qInstallMessageHandler(keepWarnings);
    QLocale::setDefault(locale);
    controller.isDark = dark;
    engine.setImportPathList(
        {QStringLiteral(RUNTIME_FOLDER "/qml"), QStringLiteral("qrc:/qt-project.org/imports")});
    engine.rootContext()->setContextProperty(QStringLiteral("mediaConverterController"),
                                             &controller);
    engine.load(QUrl(QStringLiteral("qrc:/MediaConverterNotification.qml")));
    if (engine.rootObjects().isEmpty()) {
        qFatal("no window: %s", qPrintable(warnings.join('\n')));
    }
    window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    window->requestActivate();
    if (!QTest::qWaitForWindowActive(window)) {
        qFatal("the window does not become active");
    }
}

Toast::~Toast() {
    qInstallMessageHandler(nullptr);
    currentWarnings = nullptr;
}

void Toast::show(const QString& view) {
    if (view == "viewStart") {
        emit controller.convertStarted();
    } else if (view == "viewFinish") {
        emit controller.convertFinished("/tmp/meeting.mp4");
    } else {
        emit controller.convertError(7, "/tmp/meeting.mp4");
    }
}

void Toast::showAndSettle(const QString& name) {
    show(name);
    if (!waitFor([&] { return view(name)->y() == 200; })) {
        qFatal("%s does not settle", qPrintable(name));
    }
    QTest::qWait(0);
}

QQuickItem* Toast::view(const QString& name) const {
    return window->findChild<QQuickItem*>(name);
}

QList<QQuickItem*> Toast::row(const QString& name) const {
    return view(name)->childItems().constFirst()->childItems();
}

QQuickItem* Toast::button(const QString& name, const QString& svg) const {
    for (QQuickItem* const item : row(name)) {
        if (item->property("iconButtonSvg").toString() == svg) {
            return item;
        }
    }
    qFatal("no %s in %s", qPrintable(svg), qPrintable(name));
}

QStringList Toast::visibleViews() const {
    QStringList visible;
    for (const char* const name : {"viewStart", "viewFinish", "viewError"}) {
        if (view(name)->isVisible()) {
            visible << name;
        }
    }
    return visible;
}

void Toast::click(const QQuickItem* item) {
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inWindow(item).center().toPoint());
}

QRectF Toast::inWindow(const QQuickItem* item) {
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
}

QImage Toast::grab() const {
    return window->grabWindow();
}

} // namespace recordconverter::app::test
