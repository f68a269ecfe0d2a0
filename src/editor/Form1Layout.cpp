// The measures of the main window, its bars, and its state between runs.

#include "DisplayView.h"
#include "EditorState.h"
#include "Form1.h"
#include "PanelBar.h"
#include "ScrollPositions.h"
#include "StartUpVariables.h"

#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QSettings>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Measures of the window, in twips.
constexpr float BarHeight = 300;
constexpr float ExtraHeight = 120;
constexpr float ExtraWidth = 200;
constexpr float EdgesWidth = 120;

constexpr float StatusPanelWidths[] = {4000, 1500, 600, 1000};

int PixelsX(float twips)
{
    return qRound(twips / TwipsPerPixelX);
}

int PixelsY(float twips)
{
    return qRound(twips / TwipsPerPixelY);
}

/// True if enough of a window's upper edge is on a screen for the mouse to move it.
bool IsOnAScreen(const QRect& window)
{
    constexpr int Grip = 40;
    const QRect edge(window.topLeft(), QSize(window.width(), Grip));
    return std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen* screen) {
        const QRect part = screen->geometry().intersected(edge);
        return part.width() >= Grip && part.height() > 0;
    });
}

} // namespace

// ---------------------------------------------------------------- the window's measures

float Form1::FormLeft() const
{
    return float(pos().x()) * TwipsPerPixelX;
}

float Form1::FormTop() const
{
    return float(pos().y()) * TwipsPerPixelY;
}

float Form1::FormWidth() const
{
    return float(client->width()) * TwipsPerPixelX + EdgesWidth;
}

float Form1::FormHeight() const
{
    return (float(client->height()) + CaptionHeight) * TwipsPerPixelY + BarHeight + ExtraHeight;
}

void Form1::PlaceForm(float left, float top, float width, float height)
{
    if (isVisible() && isMaximized())
        return;
    const auto inside = [this](float formWidth, float formHeight) {
        const float clientHeight = formHeight - CaptionHeight * TwipsPerPixelY - BarHeight - ExtraHeight;
        return QSize(PixelsX(formWidth - EdgesWidth), PixelsY(clientHeight) + menuBar()->sizeHint().height());
    };
    setMinimumSize(inside(MainFormMinWidth, MainFormMinHeight));
    resize(inside(width, height).expandedTo(minimumSize()));
    QPoint corner(PixelsX(left), PixelsY(top));
    // Not at the position of a screen that no longer exists: the window would be out of reach.
    if (!IsOnAScreen({corner, size()}))
        corner = QGuiApplication::primaryScreen()->availableGeometry().topLeft();
    move(corner);
}

void Form1::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    if (!isMinimized())
        layOut();
}

float Form1::barHeight() const
{
    constexpr int Padding = 4;
    return std::max(BarHeight, float(StatusMsg->fontMetrics().height() + Padding) * TwipsPerPixelY);
}

void Form1::layOut()
{
    // Marks the reading position while the old layout is still valid.
    SetTemporalBookmark();

    const float width = FormWidth();
    const float height = FormHeight();
    float general = width;
    for (int panel = 2; panel <= 5; ++panel) {
        Status->setPanelWidth(panel, StatusPanelWidths[panel - 2]);
        general -= StatusPanelWidths[panel - 2];
    }
    general -= ExtraWidth;
    if (general >= 0)
        Status->setPanelWidth(1, general);
    const float bar = barHeight();
    const float enlarged = bar - BarHeight;
    const float statusTop = height - CaptionHeight * TwipsPerPixelY - 2 * BarHeight - ExtraHeight - enlarged;
    Status->setGeometry(0, PixelsY(statusTop), PixelsX(width + ExtraWidth), PixelsY(bar));

    StatusMsg->setPanelWidth(1, width - 130);
    StatusMsg->setGeometry(0, PixelsY(statusTop - bar), PixelsX(width + ExtraWidth), PixelsY(bar));

    const float band = float(toolbarBand()) * TwipsPerPixelY;
    const float shown = height - CaptionHeight * TwipsPerPixelY - 3 * BarHeight - 2 * enlarged - 100 - band;
    HTMLread->setGeometry(0, toolbarBand(), PixelsX(width - 10 * TwipsPerPixelX), PixelsY(shown));

    MoveSchemaControls();
    // The scroll position that the resize causes is not recorded.
    SkipPositionRemember = true;
}

// ---------------------------------------------------------------- the window between two runs

void Form1::storeWindowState() const
{
    QSettings store(QSettings::UserScope, u"Vellumark"_s, u"Vellumark"_s);
    store.setValue("Window/Maximized"_L1, isMaximized());
    if (isMaximized())
        store.setValue("Window/NormalGeometry"_L1, normalGeometry());
}

void Form1::restoreWindowState()
{
    const QSettings store(QSettings::UserScope, u"Vellumark"_s, u"Vellumark"_s);
    if (!store.value("Window/Maximized"_L1).toBool())
        return;
    // The record holds the rectangle of the maximised window.
    const QRect normal = store.value("Window/NormalGeometry"_L1).toRect();
    if (normal.isValid() && IsOnAScreen(normal))
        setGeometry(normal);
    setWindowState(windowState() | Qt::WindowMaximized);
}

} // namespace vmk
