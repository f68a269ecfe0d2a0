#pragma once

#include "LayoutQuery.h"

#include <algorithm>

namespace vmk {

/// A layout without fonts: each character is a cell, each line of the document one row without wrapping. The
/// left margin of a line counts in pixels.
class GridLayout final : public LayoutQuery
{
public:
    static constexpr int CellWidth = 10;
    static constexpr int RowHeight = 20;

    explicit GridLayout(DisplayDocument& laidOut)
        : document(laidOut)
    {
        document.setLayout(this);
    }
    GridLayout(const GridLayout&) = delete;
    GridLayout& operator=(const GridLayout&) = delete;
    ~GridLayout() { document.setLayout(nullptr); }

    std::vector<QRect> clientRects(Position from, Position to) override
    {
        std::vector<QRect> rects;
        for (int line = from.line; line <= to.line; ++line) {
            const int begin = line == from.line ? from.offset : 0;
            const int end = line == to.line ? to.offset : int(document.line(line).text.size());
            if (from == to || !document.line(line).text.isEmpty())
                rects.emplace_back(margin(line) + begin * CellWidth, line * RowHeight - scrolled.y(),
                                   (end - begin) * CellWidth, RowHeight);
        }
        return rects;
    }

    Position positionAt(QPoint point) override
    {
        const int line = std::clamp((point.y() + scrolled.y()) / RowHeight, 0, document.lineCount() - 1);
        const int column = (point.x() - margin(line) + CellWidth / 2) / CellWidth;
        return {line, std::clamp(column, 0, int(document.line(line).text.size()))};
    }

    int lineAt(QPoint point) override
    {
        const int line = (point.y() + scrolled.y()) / RowHeight;
        return line >= 0 && line < document.lineCount() ? line : -1;
    }

    QPoint scrollOffset() override { return scrolled; }
    void scrollTo(QPoint offset) override { scrolled = offset; }
    void scrollIntoView(Position place) override { scrolled.setY(place.line * RowHeight); }

private:
    [[nodiscard]] int margin(int line) const
    {
        const QString style = document.tags()[document.line(line).block].style;
        const qsizetype at = style.indexOf(u':');
        return at < 0 ? 0 : QStringView(style).mid(at + 1).trimmed().chopped(2).toInt();
    }

    DisplayDocument& document;
    QPoint scrolled;
};

} // namespace vmk
