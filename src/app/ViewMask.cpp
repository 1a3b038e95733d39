#include "app/ViewMask.h"

#include <QRegion>
#include <QVariant>

namespace recordconverter::app {
namespace {

/// An empty mask means none at all; this one lets nothing of the window through.
const QRegion kNothing(-2, -2, 1, 1);

QRect placeOf(const QObject& view) {
    const auto value = [&view](const char* property) { return view.property(property).toReal(); };
    return QRectF(value("x"), value("y"), value("width"), value("height")).toAlignedRect();
}

} // namespace

ViewMask::ViewMask(QWindow& window) : QObject(&window), mWindow(window) {
    for (const char* const name : {"viewStart", "viewFinish", "viewError"}) {
        // By name: the items' class is known to QML, and nothing else here needs its library.
        auto* const view = window.findChild<QObject*>(QString::fromLatin1(name));
        if (view == nullptr) {
            continue;
        }
        mViews << view;
        connect(view, SIGNAL(yChanged()), this, SLOT(update()));
        connect(view, SIGNAL(widthChanged()), this, SLOT(update()));
        connect(view, SIGNAL(visibleChanged()), this, SLOT(update()));
    }
    connect(&window, SIGNAL(widthChanged(int)), this, SLOT(update()));
    update();
}

void ViewMask::update() {
    QRegion seen;
    for (const QObject* const view : mViews) {
        if (view->property("visible").toBool()) {
            seen += placeOf(*view);
        }
    }
    seen &= QRect(QPoint(), mWindow.size());
    mWindow.setMask(seen.isEmpty() ? kNothing : seen);
}

} // namespace recordconverter::app
