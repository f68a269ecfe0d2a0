#pragma once

#include "LayoutQuery.h"

#include <vector>

namespace vmk {

/// A layout in which each range has the same width.
class LayoutOfWidth final : public LayoutQuery
{
public:
    explicit LayoutOfWidth(int rangeWidth)
        : width(rangeWidth)
    {
    }
    std::vector<QRect> clientRects(Position /*from*/, Position /*to*/) override
    {
        return {{0, 0, width, 10}};
    }
    Position positionAt(QPoint /*clientPoint*/) override { return {}; }
    int lineAt(QPoint /*clientPoint*/) override { return 0; }
    QPoint scrollOffset() override { return {}; }
    void scrollTo(QPoint /*offset*/) override { }
    void scrollIntoView(Position /*place*/) override { }

private:
    int width;
};

} // namespace vmk
