#include "ColorsF1.h"

#include "SettingsF.h"
#include "SettingsVariables.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QToolTip>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int GridWidth = ColorCellsInRow * ColorCellPixels;
/// The cells, and half a cell below them.
constexpr int GridHeight = (ColorCellRows * ColorCellPixels) + (ColorCellPixels / 2);

QColor Opaque(ColorValue color)
{
    return QColor::fromRgb(color);
}

} // namespace

ColorsF1::ColorsF1(SettingsF& owner)
    : QWidget(&owner, Qt::Tool)
    , settings(owner)
{
    setObjectName(u"ColorsF1"_s);
    setWindowTitle(u" Set Colors"_s);
    setAccessibleName(u"colors"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::StrongFocus);
    SetColorForB = new QPushButton(this);
    SetColorForB->setObjectName(u"SetColorForB"_s);
    // A mouse click leaves the focus, and thus the arrow keys, with the cells.
    SetColorForB->setFocusPolicy(Qt::TabFocus);
    connect(SetColorForB, &QPushButton::clicked, this, [this] { giveColor(current); });
    SetField(ColorNames.first());
    const int buttonHeight = SetColorForB->sizeHint().height();
    SetColorForB->setGeometry(0, GridHeight, GridWidth, buttonHeight);
    setFixedSize(GridWidth, GridHeight + buttonHeight);
    DrawColorCells();
}

void ColorsF1::DrawColorCells()
{
    table.read(ColorTableFile());
    update();
}

void ColorsF1::SetField(const QString& name)
{
    SetColorForB->setText(name);
    SetColorForB->setAccessibleName(u"set "_s + name);
}

// ---------------------------------------------------------------- painting

void ColorsF1::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    for (int cell = 0; cell < ColorCellCount; ++cell) {
        painter.setBrush(Opaque(table.color(cell)));
        painter.drawRect(ColorCell(cell).adjusted(0, 0, -1, -1));
    }
    if (current < 0)
        return;
    // Dark and light frames are visible on every colour.
    const QRect frame = ColorCell(current).adjusted(0, 0, -1, -1);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Qt::white);
    painter.drawRect(frame);
    painter.setPen(Qt::black);
    painter.drawRect(frame.adjusted(1, 1, -1, -1));
    painter.setPen(Qt::white);
    painter.drawRect(frame.adjusted(2, 2, -2, -2));
}

bool ColorsF1::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto& help = static_cast<QHelpEvent&>(*event);
        const int cell = ColorCellAt(help.pos());
        if (cell >= 0)
            QToolTip::showText(help.globalPos(), HtmlOfColor(table.color(cell)), this, ColorCell(cell));
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

// ---------------------------------------------------------------- choosing

void ColorsF1::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int cell = ColorCellAt(event->position().toPoint());
    if (cell < 0)
        return;
    chooseCell(cell);
    giveColor(cell);
}

void ColorsF1::keyPressEvent(QKeyEvent* event)
{
    const int from = std::max(current, 0);
    switch (event->key()) {
    case Qt::Key_Left:
        return moveTo(from - 1);
    case Qt::Key_Right:
        return moveTo(current < 0 ? 0 : from + 1);
    case Qt::Key_Up:
        return moveTo(from - ColorCellsInRow);
    case Qt::Key_Down:
        return moveTo(current < 0 ? 0 : from + ColorCellsInRow);
    case Qt::Key_Home:
        return moveTo(0);
    case Qt::Key_End:
        return moveTo(ColorCellCount - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return giveColor(current);
    case Qt::Key_Escape:
        close();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void ColorsF1::moveTo(int cell)
{
    if (cell < 0 || cell >= ColorCellCount)
        return;
    chooseCell(cell);
    const QRect area = ColorCell(cell);
    QToolTip::showText(mapToGlobal(area.bottomRight()), HtmlOfColor(table.color(cell)), this, area);
}

void ColorsF1::chooseCell(int cell)
{
    current = cell;
    setAccessibleDescription(HtmlOfColor(table.color(cell)));
    update();
}

void ColorsF1::giveColor(int cell)
{
    if (cell < 0)
        return;
    const qsizetype field = ColorNames.indexOf(SetColorForB->text());
    settings.TakeColor(int(field), HtmlOfColor(table.color(cell)));
}

} // namespace vmk
