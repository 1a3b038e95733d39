#include "app/Toast.h"

#include <QAccessible>
#include <QImageReader>
#include <QScreen>

#include <algorithm>

// The window in a real QQuickWindow, with a stub in the controller's place.

namespace recordconverter::app::test {
namespace {

struct ViewCase {
    QString name;
    QString svgs;    ///< of the icon and the buttons
    QString buttons; ///< as whoever cannot see them hears them
    double maximumTextWidth;
    QString text;
};

const ViewCase kViews[] = {
    {"viewStart", "shape-circle cancel", "close", 300,
     "Your recording is being prepared. Please wait."},
    {"viewFinish", "check open-in-folder file-video cancel", "open play close", 180,
     "Your recording is ready."},
    {"viewError", "check cancel", "close", 280, "Your recording conversion has failed."},
};

class WindowView : public testing::TestWithParam<int> {
protected:
    const ViewCase& expected = kViews[GetParam()];
    const QString name = expected.name;
    const bool isEnd = name != "viewStart";
};

INSTANTIATE_TEST_SUITE_P(Each, WindowView, testing::Range(0, 3), [](const auto& tested) {
    return kViews[tested.param].name.toStdString();
});

QColor colorOf(const QObject* object, const char* property) {
    return object->property(property).value<QColor>();
}

/// The mean difference of a button's icon on the screen to its outline at the screen's own scale,
/// white on black or black on white.
double differenceToOutline(const QQuickItem* button, const QImage& screen, double scale,
                           bool white) {
    QImageReader reader(":/" + button->property("iconButtonSvg").toString());
    reader.setScaledSize((QSizeF(15, 15) * scale).toSize());
    const QImage expected = reader.read();
    const auto* const content = button->property("contentItem").value<QQuickItem*>();
    const QPointF corner = Toast::inWindow(content->childItems().constFirst()).topLeft() * scale;
    double sum = 0;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const int alpha = qAlpha(expected.pixel(x, y));
            const int grey = qGray(screen.pixel(corner.toPoint() + QPoint(x, y)));
            sum += std::abs((white ? alpha : 255 - alpha) - grey);
        }
    }
    return sum / (expected.width() * expected.height());
}

} // namespace

TEST(Window, StandsInTheCornerTransparentAndEmptyBeforeTheFirstSignal) {
    const Toast toast;
    const QSize screen = toast.window->screen()->size();
    EXPECT_TRUE(toast.window->isVisible());
    EXPECT_EQ(toast.window->title(), "Obrix");
    EXPECT_EQ(toast.window->color(), QColor(Qt::transparent));
    EXPECT_TRUE(toast.window->flags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(toast.window->flags() & Qt::FramelessWindowHint);
    const int width = int(toast.view("viewError")->width());
    EXPECT_EQ(toast.window->geometry(),
              QRect(screen.width() - width - 10, screen.height() - 400, width, 400));
    EXPECT_EQ(toast.visibleViews(), QStringList());
}

TEST_P(WindowView, SlidesInWithinASecondAndTakesTheFocus) {
    Toast toast;
    QQuickItem* const view = toast.view(name);
    ASSERT_EQ(view->position(), QPointF(0, 400));
    std::vector<double> heights;
    QElapsedTimer clock;
    qint64 firstQuarter = 0;
    QObject::connect(view, &QQuickItem::yChanged, [&] {
        heights.push_back(view->y());
        if (firstQuarter == 0 && view->y() < 350) {
            firstQuarter = clock.elapsed();
        }
    });
    clock.start();
    toast.show(name);
    EXPECT_EQ(toast.visibleViews(), QStringList(name));
    EXPECT_TRUE(view->hasActiveFocus());
    EXPECT_EQ(toast.window->property("isFinished").toBool(), isEnd);
    ASSERT_TRUE(waitFor([&] { return view->y() == 200; }));
    EXPECT_GE(clock.elapsed(), 950); // in how many steps depends on the machine's load
    EXPECT_TRUE(std::ranges::is_sorted(heights, std::greater()));
    // Quadratic, in and out: after 354 ms, where a steady slide takes 250.
    EXPECT_GT(firstQuarter, 330);
}

TEST_P(WindowView, HoldsItsIconTextAndButtonsInOneRowHoweverLongTheText) {
    for (const bool mirrored : {false, true}) {
        Toast toast(mirrored ? QLocale("ar_EG") : QLocale("en_US"));
        toast.showAndSettle(name);
        for (const QString& text :
             {expected.text, QString("Words and words. ").repeated(40),
              QString("Aufzeichnungsumwandlung").repeated(8), QString("録画を変換。").repeated(30),
              QString("a\nb\nc\nd\ne"), QString()}) {
            for (const char* const property : kTextProperties) {
                toast.controller.setProperty(property, text);
            }
            toast.window->grabWindow();
            const QQuickItem* const view = toast.view(name);
            QList<QQuickItem*> row = toast.row(name);
            EXPECT_EQ(view->height(), 72);
            EXPECT_EQ(row[1]->property("text"), text);
            EXPECT_LE(row[1]->width(), expected.maximumTextWidth);
            EXPECT_LE(row[1]->property("contentWidth").toDouble(), row[1]->width() + 0.5);
            EXPECT_LE(row[1]->property("contentHeight").toDouble(), 68);
            EXPECT_LE(row[1]->height(), 68);
            if (mirrored) {
                std::ranges::reverse(row);
            }
            // From the side where reading begins: margin, items, gaps of 10, margin.
            double x = 16;
            QStringList svgs;
            for (const QQuickItem* const item : row) {
                EXPECT_EQ(Toast::inWindow(item).x(), x);
                EXPECT_NEAR(Toast::inWindow(item).center().y(), 200 + 36, 0.5);
                x += item->width() + 10;
                const QString svg = item->property("iconButtonSvg").toString();
                if (!svg.isEmpty()) {
                    svgs << QString(svg).remove("-regular.svg");
                    EXPECT_EQ(item->size(), QSizeF(30, 30));
                    EXPECT_EQ(item->y(), std::round(item->y())) << "half a pixel blurs the icon";
                }
            }
            EXPECT_EQ(view->width(), x - 10 + 16);
            EXPECT_EQ(toast.window->width(), int(view->width()));
            const int right = toast.window->screen()->size().width() - toast.window->width();
            EXPECT_TRUE(waitFor([&] { return toast.window->x() == (mirrored ? 10 : right - 10); }));
            if (mirrored) {
                std::ranges::reverse(svgs);
            }
            EXPECT_EQ(svgs.join(' '), expected.svgs);
        }
    }
}

TEST_P(WindowView, IsReachedPressedAndReadOutWithoutSeeingIt) {
    QAccessible::setActive(true);
    const auto accessible = [](QObject* item) {
        return QAccessible::queryAccessibleInterface(item);
    };
    Toast toast;
    toast.showAndSettle(name);
    EXPECT_EQ(accessible(toast.view(name))->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible(toast.view(name))->text(QAccessible::Name), expected.text);
    QStringList names;
    QStringList calls;
    for (qsizetype step = 0; step + 1 < toast.row(name).size(); ++step) {
        QTest::keyClick(toast.window, Qt::Key_Tab);
        QQuickItem* const focused = toast.window->activeFocusItem();
        EXPECT_TRUE(step == 0 || accessible(focused)->role() == QAccessible::Button);
        names << accessible(focused)->text(QAccessible::Name);
        const QQuickItem* const ring =
            focused->property("background").value<QQuickItem*>()->childItems().constFirst();
        const QObject* const border = ring->property("border").value<QObject*>();
        EXPECT_EQ(QRectF(ring->position(), ring->size()), QRectF(-3, -3, 36, 36));
        EXPECT_EQ(border->property("width").toInt(), 2);
        EXPECT_EQ(colorOf(border, "color"), "#1170CF");
        if (names.last() == "open" || names.last() == "play") {
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
                QTest::keyClick(toast.window, key);
                calls << names.last();
            }
        }
    }
    EXPECT_EQ(names, QStringList(expected.text) + expected.buttons.split(' '));
    QTest::keyClick(toast.window, Qt::Key_Return);
    EXPECT_EQ(toast.controller.calls, isEnd ? calls << "close" : calls);
    EXPECT_EQ(toast.visibleViews(), QStringList());
}

TEST_P(WindowView, AsksTheControllerWhenClickedAndClosesByButtonAndByEscapeAlike) {
    for (const bool byKey : {false, true}) {
        Toast toast;
        toast.showAndSettle(name);
        const QList<QQuickItem*> row = toast.row(name);
        for (QQuickItem* const button : row.sliced(2)) {
            EXPECT_EQ(toast.visibleViews(), QStringList(name));
            if (byKey && button == row.last()) {
                button->forceActiveFocus();
                QTest::keyClick(toast.window, Qt::Key_Escape);
            } else {
                QTest::mouseClick(toast.window, Qt::LeftButton, Qt::NoModifier,
                                  Toast::inWindow(button).center().toPoint());
            }
        }
        EXPECT_EQ(toast.visibleViews(), QStringList());
        EXPECT_EQ(toast.controller.calls, isEnd ? expected.buttons.split(' ') : QStringList());
        EXPECT_TRUE(toast.window->isVisible()) << "only the controller ends the process";
    }
}

TEST(Window, AnEndReplacesWhatIsShownAtOnceAndComesAlsoAfterAClose) {
    for (const bool closed : {false, true}) {
        Toast toast;
        toast.show("viewStart");
        ASSERT_TRUE(waitFor([&] { return toast.view("viewStart")->y() < 350; }));
        if (closed) {
            QTest::keyClick(toast.window, Qt::Key_Escape);
        }
        for (const char* const end : {"viewError", "viewFinish", "viewError"}) {
            toast.show(end);
            EXPECT_EQ(toast.visibleViews(), QStringList(end));
            EXPECT_TRUE(waitFor([&] { return toast.view(end)->y() == 200; }));
        }
        QTest::keyClick(toast.window, Qt::Key_Escape);
        EXPECT_EQ(toast.controller.calls, QStringList("close"));
    }
}

TEST(Window, IconsAreDrawnSharpInTheirColourAtTheScaleOfTheScreen) {
    Toast toast;
    toast.showAndSettle("viewFinish");
    const double scale = toast.window->effectiveDevicePixelRatio();
    ASSERT_EQ(scale, qEnvironmentVariable("QT_SCALE_FACTOR", "1").toDouble());
    for (const bool dark : {true, false}) {
        toast.controller.setProperty("isDark", dark);
        const QImage screen = toast.window->grabWindow();
        QList<QQuickItem*> row = toast.row("viewFinish");
        row.removeAt(1);
        for (const QQuickItem* const button : row) {
            EXPECT_LT(differenceToOutline(button, screen, scale, dark), 6);
        }
    }
}

} // namespace recordconverter::app::test
