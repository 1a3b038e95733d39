#pragma once

#include <QObject>
#include <QWindow>

namespace recordconverter::app {

/// Cuts the window down to the views that are seen: what lies beside them is neither drawn nor
/// takes a click, on desktops without a compositor too. Lives on the GUI thread, owned by the
/// window.
class ViewMask : public QObject {
    Q_OBJECT

public:
    /// `window` is the loaded notification window; its views are found by their names.
    explicit ViewMask(QWindow& window);

private slots:
    void update();

private:
    QWindow& mWindow;
    QObjectList mViews;
};

} // namespace recordconverter::app
