#pragma once

#include <QLocale>
#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>
#include <QTest>

#include <memory>

namespace recordconverter::app::test {

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

    void setTexts(const QString& text) {
        startedText = finishedText = errorText = text;
        emit infoChanged();
    }

signals:
    void convertStarted();
    void convertProgress(float progress, QString recordedFile);
    void convertFinished(QString recordedFile);
    void convertError(int error, QString recordedFile);
    void infoChanged();
    void exitProcess();

public slots:
    void open() { calls << "open"; }
    void play() { calls << "play"; }
    void close() { calls << "close"; }
};

/// The real window with a stub controller. Qt's warnings while it lives are kept.
class Toast {
public:
    explicit Toast(const QLocale& locale = QLocale("en_US"), bool dark = false);
    ~Toast();
    Toast(const Toast&) = delete;
    Toast& operator=(const Toast&) = delete;

    StubController controller;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
    QStringList warnings;

    /// Shows a view by its signal: "viewStart", "viewFinish" or "viewError".
    void show(const QString& view);
    void showAndSettle(const QString& view);
    QQuickItem* view(const QString& name) const;
    /// The items of a view's row, in order of declaration.
    QList<QQuickItem*> row(const QString& view) const;
    QQuickItem* button(const QString& view, const QString& svg) const;
    QStringList visibleViews() const;
    void click(const QQuickItem* item);
    static QRectF inWindow(const QQuickItem* item);
    /// What is on the screen, in device pixels.
    QImage grab() const;
};

/// Waits for a condition while events run; false after five seconds.
template <typename Condition>
bool waitFor(const Condition& condition) {
    return QTest::qWaitFor(condition, 5000);
}

} // namespace recordconverter::app::test
