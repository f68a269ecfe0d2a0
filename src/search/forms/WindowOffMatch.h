#pragma once

#include <QRectF>
#include <QSizeF>

#include <optional>

class QWidget;

namespace vmk {

class Form1;
class TextRange;

/// A modeless window and a match on the screen; all values have the same unit.
struct WindowOverMatch
{
    QRectF form; ///< The window with its frame.
    QRectF match;
    QSizeF screen;
    QSizeF pixel; ///< One pixel.
    qreal captionHeight = 0; ///< Of the title bar and the window's edge.
};

/// Returns the top that the window needs to uncover the match: above or below it, whichever is nearer.
/// Returns nothing if the window does not cover the match, or if there is no room.
[[nodiscard]] std::optional<qreal> TopOffMatch(const WindowOverMatch& position);

/// Moves a window of the main window up or down so that it does not cover a match in the display.
void MoveFindWinOffMatch(QWidget& window, const Form1& owner, const TextRange& match);

} // namespace vmk
