#include "app/Toast.h"

#include <QAccessible>
#include <QImageReader>
#include <QScreen>
#include <gtest/gtest.h>

#include <algorithm>

// The window in a real QQuickWindow, with a stub in the controller's place.

namespace recordconverter::app::test {
namespace {

const QString kCancel = "cancel-regular.svg";
const QString kCheck = "check-regular.svg";
const QString kOpen = "open-in-folder-regular.svg";
const QString kPlay = "file-video-regular.svg";
const QString kCircle = "shape-circle-regular.svg";

struct ViewCase {
    const char* view;
    QStringList svgs; ///< of the icon and the buttons, in order; the text stands behind the first
    QStringList names;
    double maximumTextWidth;
    const QString StubController::*text;
};

const std::vector<ViewCase> kViews = {
    {"viewStart", {kCircle, kCancel}, {"close"}, 300, &StubController::startedText},
    {"viewFinish",
     {kCheck, kOpen, kPlay, kCancel},
     {"open", "play", "close"},
     180,
     &StubController::finishedText},
    {"viewError", {kCheck, kCancel}, {"close"}, 280, &StubController::errorText},
};

void PrintTo(const ViewCase& tested, std::ostream* stream) {
    *stream << tested.view;
}

class WindowView : public testing::TestWithParam<ViewCase> {};

INSTANTIATE_TEST_SUITE_P(Each, WindowView, testing::ValuesIn(kViews),
                         [](const auto& tested) { return std::string(tested.param.view); });

QColor colorOf(const QObject* object, const char* property) {
    return object->property(property).value<QColor>();
}

/// What a colour with 255 in its channels comes to.
QColor clamped(bool light, double alpha) {
    return light ? QColor::fromRgbF(1, 1, 1, float(alpha))
                 : QColor::fromRgbF(0, 0, 0, float(alpha));
}

/// The accessible interface of the window's item.
QAccessibleInterface* accessible(QQuickItem* item) {
    QAccessible::setActive(true);
    return QAccessible::queryAccessibleInterface(item);
}

/// Darkest and brightest grey in an item's inner half, where the icon is and its circle is not.
std::pair<int, int> greys(const Toast& toast, const QQuickItem* item) {
    const QImage image = toast.grab();
    const double scale = toast.window->effectiveDevicePixelRatio();
    const QRectF area = Toast::inWindow(item);
    const QRectF inner =
        area.adjusted(area.width() / 4, area.height() / 4, -area.width() / 4, -area.height() / 4);
    int darkest = 255;
    int brightest = 0;
    for (int y = int(inner.top() * scale); y < int(inner.bottom() * scale); ++y) {
        for (int x = int(inner.left() * scale); x < int(inner.right() * scale); ++x) {
            darkest = std::min(darkest, qGray(image.pixel(x, y)));
            brightest = std::max(brightest, qGray(image.pixel(x, y)));
        }
    }
    return {darkest, brightest};
}

} // namespace

TEST(Window, StandsInTheCornerTransparentAndEmptyBeforeTheFirstSignal) {
    Toast toast;
    const QSize screen = toast.window->screen()->size();
    EXPECT_TRUE(toast.window->isVisible());
    EXPECT_EQ(toast.window->title(), "Obrix");
    EXPECT_EQ(toast.window->color(), QColor(Qt::transparent));
    EXPECT_TRUE(toast.window->flags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(toast.window->flags() & Qt::FramelessWindowHint);
    EXPECT_EQ(toast.window->height(), 400);
    EXPECT_EQ(toast.window->width(), int(toast.view("viewError")->width()));
    EXPECT_EQ(toast.window->x(), screen.width() - toast.window->width() - 10);
    EXPECT_EQ(toast.window->y(), screen.height() - 400);
    EXPECT_EQ(toast.visibleViews(), QStringList());
    EXPECT_EQ(toast.warnings, QStringList());
}

TEST_P(WindowView, SlidesInWithinASecondAndTakesTheFocus) {
    Toast toast;
    QQuickItem* const view = toast.view(GetParam().view);
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
    toast.show(GetParam().view);
    EXPECT_EQ(toast.visibleViews(), QStringList(GetParam().view));
    EXPECT_TRUE(view->hasActiveFocus());
    EXPECT_EQ(toast.window->property("isFinished").toBool(),
              QString(GetParam().view) != "viewStart");
    ASSERT_TRUE(waitFor([&] { return view->y() == 200; }));
    EXPECT_GE(clock.elapsed(), 950);
    EXPECT_GT(heights.size(), 10U) << "jumps instead of sliding";
    EXPECT_TRUE(std::ranges::is_sorted(heights, std::greater()));
    // Quadratic, in and out: after 354 ms, where a steady slide takes 250.
    EXPECT_GT(firstQuarter, 330);
    EXPECT_EQ(toast.window->width(), int(view->width()));
    EXPECT_EQ(toast.window->x(), toast.window->screen()->size().width() - view->width() - 10);
    EXPECT_EQ(toast.warnings, QStringList());
}

TEST_P(WindowView, HoldsItsIconTextAndButtonsInOneRow) {
    for (const bool mirrored : {false, true}) {
        Toast toast(mirrored ? QLocale("ar_EG") : QLocale("en_US"));
        toast.showAndSettle(GetParam().view);
        const QQuickItem* const view = toast.view(GetParam().view);
        QList<QQuickItem*> row = toast.row(GetParam().view);
        ASSERT_EQ(row.size(), GetParam().svgs.size() + 1);
        EXPECT_EQ(view->height(), 72);
        EXPECT_EQ(view->width(), row.constFirst()->parentItem()->implicitWidth() + 32);
        EXPECT_EQ(row[1]->property("text"), toast.controller.*(GetParam().text));
        EXPECT_LE(row[1]->width(), GetParam().maximumTextWidth);
        QStringList svgs;
        for (QQuickItem* const item : row) {
            EXPECT_NEAR(Toast::inWindow(item).center().y(), 200 + 36, 0.5);
            if (item != row[1]) {
                svgs << item->property("iconButtonSvg").toString();
                EXPECT_EQ(item->size(), QSizeF(30, 30));
                EXPECT_EQ(item->y(), std::round(item->y())) << "half a pixel blurs the icon";
            }
        }
        EXPECT_EQ(svgs, GetParam().svgs);
        // From the side where reading begins: margin, items, gaps of 10, margin.
        if (mirrored) {
            std::ranges::reverse(row);
        }
        double x = 16;
        for (const QQuickItem* const item : row) {
            EXPECT_EQ(Toast::inWindow(item).x(), x);
            x += item->width() + 10;
        }
        EXPECT_EQ(x - 10 + 16, view->width());
        const int screenWidth = toast.window->screen()->size().width();
        EXPECT_EQ(toast.window->x(), mirrored ? 10 : screenWidth - toast.window->width() - 10);
    }
}

TEST_P(WindowView, WearsTheThemeAndChangesItLive) {
    Toast toast(QLocale("en_US"), true);
    toast.showAndSettle(GetParam().view);
    for (const bool dark : {true, false}) {
        toast.controller.setProperty("isDark", dark);
        const QQuickItem* const view = toast.view(GetParam().view);
        const QList<QQuickItem*> row = toast.row(GetParam().view);
        const QObject* const border = view->property("border").value<QObject*>();
        EXPECT_EQ(colorOf(view, "color"), clamped(!dark, 1));
        EXPECT_EQ(colorOf(border, "color"), clamped(dark, 0.3));
        EXPECT_EQ(border->property("width").toInt(), 2);
        EXPECT_EQ(view->property("radius").toInt(), 2);
        EXPECT_EQ(colorOf(row[1], "color").rgba(), clamped(dark, 0.7).rgba());
        for (const QQuickItem* const item : row) {
            if (item == row[1]) {
                continue;
            }
            EXPECT_EQ(colorOf(item, "iconButtonImageColor"), clamped(dark, 1));
            EXPECT_EQ(colorOf(item, "iconButtonBoardColor"), clamped(dark, 0.5));
            EXPECT_EQ(colorOf(item, "iconButtonBackgroundColor"), clamped(!dark, 1));
            EXPECT_EQ(colorOf(item, "focusOutlineColor"), dark ? "#64B4FA" : "#1170CF");
            // As drawn: the icon stands out from its disc on every renderer.
            const auto [darkest, brightest] = greys(toast, item);
            EXPECT_LT(darkest, dark ? 10 : 60);
            EXPECT_GT(brightest, dark ? 195 : 245);
        }
    }
    EXPECT_EQ(toast.warnings, QStringList());
}

TEST_P(WindowView, IsReachedPressedAndReadOutWithoutSeeingIt) {
    Toast toast;
    toast.showAndSettle(GetParam().view);
    const QString text = toast.controller.*(GetParam().text);
    QAccessibleInterface* const view = accessible(toast.view(GetParam().view));
    EXPECT_EQ(view->role(), QAccessible::StaticText);
    EXPECT_EQ(view->text(QAccessible::Name), text);
    QStringList visited;
    QStringList names;
    for (qsizetype step = 0; step < GetParam().svgs.size(); ++step) {
        QTest::keyClick(toast.window, Qt::Key_Tab);
        QQuickItem* const focused = toast.window->activeFocusItem();
        names << accessible(focused)->text(QAccessible::Name);
        EXPECT_TRUE(step == 0 || accessible(focused)->role() == QAccessible::Button);
        visited << focused->property("iconButtonSvg").toString();
        const QQuickItem* const ring =
            focused->property("background").value<QQuickItem*>()->childItems().constFirst();
        const QObject* const border = ring->property("border").value<QObject*>();
        EXPECT_EQ(ring->size(), QSizeF(36, 36));
        EXPECT_EQ(ring->position(), QPointF(-3, -3));
        EXPECT_EQ(border->property("width").toInt(), 2);
        EXPECT_EQ(colorOf(border, "color"), "#1170CF");
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            if (visited.last() == kOpen || visited.last() == kPlay) {
                QTest::keyClick(toast.window, key);
            }
        }
    }
    EXPECT_EQ(visited, GetParam().svgs);
    EXPECT_EQ(names, QStringList(text) + GetParam().names);
    QTest::keyClick(toast.window, Qt::Key_Return);
    QStringList expected;
    if (GetParam().svgs.contains(kOpen)) {
        expected = QStringList{"open", "open", "open", "play", "play", "play"};
    }
    if (QString(GetParam().view) != "viewStart") {
        expected << "close";
    }
    EXPECT_EQ(toast.controller.calls, expected);
    EXPECT_EQ(toast.visibleViews(), QStringList());
    EXPECT_TRUE(toast.window->isVisible());
}

TEST_P(WindowView, ClosesByButtonAndByEscapeAlike) {
    const QStringList expected =
        QString(GetParam().view) == "viewStart" ? QStringList() : QStringList("close");
    for (const bool byKey : {false, true}) {
        for (const bool focusOnButton : {false, true}) {
            Toast toast;
            toast.showAndSettle(GetParam().view);
            QQuickItem* const button = toast.button(GetParam().view, kCancel);
            if (focusOnButton) {
                button->forceActiveFocus();
            }
            byKey ? QTest::keyClick(toast.window, Qt::Key_Escape) : toast.click(button);
            EXPECT_EQ(toast.visibleViews(), QStringList());
            EXPECT_EQ(toast.controller.calls, expected);
            EXPECT_TRUE(toast.window->isVisible()) << "only the controller ends the process";
        }
    }
}

TEST_P(WindowView, KeepsLongTextsBetweenItsBordersAndOffItsButtons) {
    Toast toast;
    toast.showAndSettle(GetParam().view);
    const QString word = "Aufzeichnungsumwandlungsvorbereitungsfehlermeldung";
    for (const QString& text :
         {QString("Words and words. ").repeated(40), word.repeated(4), QString(word + " " + word),
          QString("録画を変換。").repeated(30), QString("a\nb\nc\nd\ne"), QString()}) {
        toast.controller.setTexts(text);
        toast.grab();
        const QList<QQuickItem*> row = toast.row(GetParam().view);
        EXPECT_EQ(row[1]->property("text"), text);
        EXPECT_LE(row[1]->width(), GetParam().maximumTextWidth);
        EXPECT_LE(row[1]->property("contentWidth").toDouble(), row[1]->width() + 0.5);
        EXPECT_LE(row[1]->property("contentHeight").toDouble(), 68) << text.toStdString();
        EXPECT_LE(row[1]->height(), 68);
        EXPECT_EQ(row[2]->x(), row[1]->x() + row[1]->width() + 10);
        EXPECT_EQ(toast.window->width(), row.last()->x() + 30 + 32);
    }
    EXPECT_EQ(toast.warnings, QStringList());
}

TEST(Window, ClickedButtonsAskTheControllerAndLeaveTheViewOpen) {
    Toast toast;
    toast.showAndSettle("viewFinish");
    toast.click(toast.button("viewFinish", kOpen));
    toast.click(toast.button("viewFinish", kPlay));
    EXPECT_EQ(toast.controller.calls, QStringList({"open", "play"}));
    EXPECT_EQ(toast.visibleViews(), QStringList("viewFinish"));
}

TEST(Window, AnEndDuringTheSlideHidesTheConvertingViewAtOnce) {
    for (const char* const end : {"viewFinish", "viewError"}) {
        Toast toast;
        toast.show("viewStart");
        ASSERT_TRUE(waitFor([&] { return toast.view("viewStart")->y() < 350; }));
        ASSERT_GT(toast.view("viewStart")->y(), 200);
        toast.show(end);
        EXPECT_EQ(toast.visibleViews(), QStringList(end));
        EXPECT_GT(toast.view(end)->y(), 395);
        EXPECT_TRUE(waitFor([&] { return toast.view(end)->y() == 200; }));
    }
}

TEST(Window, ShowsAnEndAfterTheConvertingViewWasClosedAndTheLastOneAloneOfSeveral) {
    Toast toast;
    toast.showAndSettle("viewStart");
    QTest::keyClick(toast.window, Qt::Key_Escape);
    for (const char* const end : {"viewError", "viewFinish", "viewError"}) {
        toast.showAndSettle(end);
        EXPECT_EQ(toast.visibleViews(), QStringList(end));
    }
    QTest::keyClick(toast.window, Qt::Key_Escape);
    EXPECT_EQ(toast.controller.calls, QStringList("close"));
}

TEST(Window, IconsAreDrawnSharpAtTheScaleOfTheScreen) {
    Toast toast(QLocale("en_US"), true);
    toast.showAndSettle("viewFinish");
    const QImage screen = toast.grab();
    const double scale = toast.window->effectiveDevicePixelRatio();
    ASSERT_EQ(scale, qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                         ? qEnvironmentVariable("QT_SCALE_FACTOR").toDouble()
                         : 1);
    for (QQuickItem* const button : toast.row("viewFinish")) {
        const QString svg = button->property("iconButtonSvg").toString();
        if (svg.isEmpty()) {
            continue;
        }
        // The outline in the pixels of the screen, white on black, is what its alpha is.
        QImageReader reader(":/" + svg);
        reader.setScaledSize((QSizeF(15, 15) * scale).toSize());
        const QImage expected = reader.read();
        const QPointF middle = Toast::inWindow(button).center() * scale;
        double best = 255;
        for (int shift = 0; shift < 9; ++shift) {
            const QPoint corner = QPoint(int(middle.x() - expected.width() / 2.0) + shift % 3 - 1,
                                         int(middle.y() - expected.height() / 2.0) + shift / 3 - 1);
            double difference = 0;
            for (int y = 0; y < expected.height(); ++y) {
                for (int x = 0; x < expected.width(); ++x) {
                    difference += std::abs(qAlpha(expected.pixel(x, y)) -
                                           qGray(screen.pixel(corner + QPoint(x, y))));
                }
            }
            best = std::min(best, difference / (expected.width() * expected.height()));
        }
        EXPECT_LT(best, 6) << svg.toStdString() << " at scale " << scale;
    }
}

} // namespace recordconverter::app::test
