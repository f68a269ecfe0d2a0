#include "ToolbarOrder.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace vmk {
namespace {

/// More entries than a toolbar can show; the program writes no longer list.
constexpr qsizetype MostEntries = 500;
constexpr qsizetype LongestText = MostEntries * 4;

bool HasRow(const ToolbarOrder& rows, int row)
{
    return row >= 0 && row < int(rows.size());
}

bool Holds(const ToolbarOrder& order, int index)
{
    return std::ranges::find(order, index) != order.end();
}

} // namespace

QString FormatOrder(const ToolbarOrder& order)
{
    QStringList numbers;
    for (const int index : order)
        numbers.append(QString::number(index));
    return numbers.join(u',');
}

std::optional<ToolbarOrder> ParseOrder(QStringView text, int designCount)
{
    if (text.size() > LongestText)
        return std::nullopt;
    ToolbarOrder order;
    bool hasButton = false;
    for (const QStringView piece : text.split(u',')) {
        bool isNumber = false;
        const int index = piece.trimmed().toInt(&isNumber);
        if (!isNumber)
            return std::nullopt;
        const bool isSeparator = index == SeparatorIndex;
        if (index < 0 || index > designCount || (!isSeparator && Holds(order, index)))
            continue;
        order.push_back(index);
        hasButton = hasButton || !isSeparator;
    }
    if (!hasButton || std::ssize(order) > MostEntries)
        return std::nullopt;
    return order;
}

ToolbarLists MakeLists(const ToolbarOrder& shown, int designCount)
{
    ToolbarLists lists{{SeparatorIndex}, shown};
    for (int index = 1; index <= designCount; ++index) {
        if (!Holds(shown, index))
            lists.available.push_back(index);
    }
    return lists;
}

int AddButton(ToolbarLists& lists, int availableRow, int before)
{
    if (!HasRow(lists.available, availableRow))
        return -1;
    const int index = lists.available[size_t(availableRow)];
    if (index != SeparatorIndex)
        lists.available.erase(lists.available.begin() + availableRow);
    const int row = HasRow(lists.shown, before) ? before : int(lists.shown.size());
    lists.shown.insert(lists.shown.begin() + row, index);
    return row;
}

int RemoveButton(ToolbarLists& lists, int shownRow)
{
    if (!HasRow(lists.shown, shownRow))
        return -1;
    const int index = lists.shown[size_t(shownRow)];
    lists.shown.erase(lists.shown.begin() + shownRow);
    // The order of the design is the order of the indexes.
    if (index != SeparatorIndex)
        lists.available.insert(std::ranges::upper_bound(lists.available, index), index);
    return std::min(shownRow, int(lists.shown.size()) - 1);
}

int MoveButton(ToolbarLists& lists, int shownRow, int step)
{
    const int target = shownRow + step;
    if (!HasRow(lists.shown, shownRow) || !HasRow(lists.shown, target))
        return -1;
    std::swap(lists.shown[size_t(shownRow)], lists.shown[size_t(target)]);
    return target;
}

} // namespace vmk
