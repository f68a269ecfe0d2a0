#include "PanelBar.h"

#include "FileNames.h"

#include "DroppedFiles.h"
#include "StartUpVariables.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace vmk {
namespace {

constexpr int TextMargin = 3;

/// A quarter of the way from the background to the text colour: visible on light and dark desktops. The frame
/// colours of dark desktops are often darker than their background.
QColor DividerColor(const QPalette& palette)
{
    const QColor ground = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    const auto mixed = [](int from, int to) { return from + (to - from) / 4; };
    return {mixed(ground.red(), text.red()), mixed(ground.green(), text.green()),
            mixed(ground.blue(), text.blue())};
}

/// Draws its text elided; `text()` remains complete for screen readers.
class PanelLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRect place = rect().adjusted(TextMargin, 0, -TextMargin, 0);
        // A text that is slightly too wide is drawn in a narrower font before it is elided.
        QFont narrow = font();
        for (int stretch = 100;
             stretch >= 80 && QFontMetrics(narrow).horizontalAdvance(text()) > place.width(); stretch -= 5)
            narrow.setStretch(stretch);
        painter.setFont(narrow);
        const QString shown = QFontMetrics(narrow).elidedText(text(), Qt::ElideRight, place.width());
        setToolTip(shown == text() ? QString() : text());
        style()->drawItemText(&painter, place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                              palette(), true, shown, QPalette::WindowText);
    }
};

} // namespace

PanelBar::PanelBar(const QStringList& names, QWidget* parent)
    : QWidget(parent)
{
    for (const QString& name : names) {
        auto* label = new PanelLabel(this);
        label->setTextFormat(Qt::PlainText);
        label->setAccessibleName(name);
        panels.push_back({label, 0});
    }
    takeDesktopFont();
    setAutoFillBackground(true);
    setAcceptDrops(true);
}

void PanelBar::takeDesktopFont()
{
    // Slightly smaller than the desktop's font, as usual for status bars.
    QFont small = QApplication::font("QLabel");
    if (small.pointSizeF() > 0)
        small.setPointSizeF(small.pointSizeF() * 0.9);
    setFont(small);
}

void PanelBar::setPanelText(int panel, const QString& newText)
{
    const QString text = ReadableName(newText);
    QLabel& label = *panels.at(size_t(panel) - 1).label;
    // An open tool tip would still show the old text.
    if (label.text() != text && !label.toolTip().isEmpty() && QToolTip::text() == label.toolTip())
        QToolTip::hideText();
    label.setText(text);
}

QString PanelBar::panelText(int panel) const
{
    return panels.at(size_t(panel) - 1).label->text();
}

void PanelBar::setPanelWidth(int panel, float twips)
{
    panels.at(size_t(panel) - 1).twips = twips;
    placePanels();
}

float PanelBar::panelWidth(int panel) const
{
    return panels.at(size_t(panel) - 1).twips;
}

void PanelBar::clear()
{
    for (const Panel& panel : panels)
        panel.label->clear();
}

void PanelBar::placePanels()
{
    float left = 0;
    for (const Panel& panel : panels) {
        const int begin = qRound(left / TwipsPerPixelX);
        left += panel.twips;
        panel.label->setGeometry(begin + 1, 1, qRound(left / TwipsPerPixelX) - begin - 1, height() - 1);
    }
    update();
}

void PanelBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placePanels();
}

void PanelBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(DividerColor(palette()));
    painter.drawLine(0, 0, width(), 0);
    for (size_t i = 1; i < panels.size(); ++i) {
        const int x = panels[i].label->x() - 1;
        painter.drawLine(x, 4, x, height() - 4);
    }
}

void PanelBar::dragEnterEvent(QDragEnterEvent* event)
{
    AcceptFileDrag(*event);
}

void PanelBar::dropEvent(QDropEvent* event)
{
    AcceptFileDrag(*event);
    Q_EMIT filesDropped(DroppedFiles(*event));
}

} // namespace vmk
