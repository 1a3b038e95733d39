#pragma once

#include <QLocale>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

#include <stdexcept>

namespace recordconverter::app::test {

constexpr const char* kTextProperties[] = {"convertingStartedText", "convertingFinishedText",
                                           "convertingErrorText"};

/// What the window sees of a controller, recording what it asks for.
class StubController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isDark MEMBER isDark NOTIFY infoChanged)
    Q_PROPERTY(QString convertingStartedText MEMBER startedText NOTIFY infoChanged)
    Q_PROPERTY(QString convertingFinishedText MEMBER finishedText NOTIFY infoChanged)
    Q_PROPERTY(QString convertingErrorText MEMBER errorText NOTIFY infoChanged)

public:
    bool isDark = false;
    QString startedText = "Your recording is being prepared. Please wait.";
    QString finishedText = "Your recording is ready.";
    QString errorText = "Your recording conversion has failed.";
    QStringList calls;

signals:
    void convertStarted();
    void convertFinished(QString recordedFile);
    void convertError(int error, QString recordedFile);
    void infoChanged();

public slots:
    void open() { calls << "open"; }
    void play() { calls << "play"; }
    void close() { calls << "close"; }
};

/// Waits for a condition while events run; false after a minute.
bool waitFor(const auto& condition) {
    return QTest::qWaitFor(condition, 60000);
}

/// The real window with a stub controller. A warning of Qt's while it lives fails the test.
class Toast {
public:
    explicit Toast(const QLocale& locale = QLocale("en_US")) {
        warnings.clear();
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type != QtDebugMsg && type != QtInfoMsg) {
                warnings << text;
            }
        });
        QLocale::setDefault(locale);
        engine.setImportPathList(
            {QStringLiteral(RUNTIME_FOLDER "/qml"), QStringLiteral("qrc:/qt-project.org/imports")});
        engine.rootContext()->setContextProperty("mediaConverterController", &controller);
        engine.load(QUrl("qrc:/MediaConverterNotification.qml"));
        if (engine.rootObjects().isEmpty()) {
            throw std::runtime_error("no window: " + warnings.join('\n').toStdString());
        }
        window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
        window->requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window, 60000));
    }
    ~Toast() {
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(warnings.join('\n').toStdString(), "");
    }

    StubController controller;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
    static inline QStringList warnings;

    /// Shows a view by its signal: "viewStart", "viewFinish" or "viewError".
    void show(const QString& name) {
        if (name == "viewStart") {
            emit controller.convertStarted();
        } else if (name == "viewFinish") {
            emit controller.convertFinished("/tmp/meeting.mp4");
        } else {
            emit controller.convertError(7, "/tmp/meeting.mp4");
        }
    }
    void showAndSettle(const QString& name) {
        show(name);
        EXPECT_TRUE(waitFor([&] { return view(name)->y() == 200; }));
        QTest::qWait(0);
    }
    QQuickItem* view(const QString& name) const { return window->findChild<QQuickItem*>(name); }
    /// A view's icon, its text and its buttons, of which the last one closes it.
    QList<QQuickItem*> row(const QString& name) const {
        return view(name)->childItems().constFirst()->childItems();
    }
    QStringList visibleViews() const {
        QStringList visible{"viewStart", "viewFinish", "viewError"};
        visible.removeIf([&](const QString& name) { return !view(name)->isVisible(); });
        return visible;
    }
    static QRectF inWindow(const QQuickItem* item) {
        return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    }
};

} // namespace recordconverter::app::test
