#include "NodeShift.h"

#include "DisplayPage.h"
#include "EditLines.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView MarginName = "MARGIN-LEFT:"_L1;

bool HasMargin(const QString& startTag)
{
    return startTag.contains(MarginName, Qt::CaseInsensitive);
}

/// The margin in pixels, rounded, halves to even; nothing if the style does not end with it.
std::optional<int> MarginOf(const QString& startTag)
{
    const qsizetype at = startTag.indexOf(MarginName, 0, Qt::CaseInsensitive);
    if (at < 0)
        return std::nullopt;
    const qsizetype from = at + MarginName.size();
    const qsizetype to = startTag.indexOf("px\""_L1, from);
    if (to < 0)
        return std::nullopt;
    bool isNumber = false;
    const double margin = QStringView(startTag).mid(from, to - from).trimmed().toDouble(&isNumber);
    constexpr double Largest = 1'000'000;
    if (!isNumber || !(std::abs(margin) <= Largest))
        return std::nullopt;
    return int(std::nearbyint(margin));
}

QString WithFirst(QString text, const QString& sought, const QString& replacement)
{
    if (const qsizetype at = text.indexOf(sought); at >= 0)
        text.replace(at, sought.size(), replacement);
    return text;
}

QString WithMargin(const QString& startTag, int from, int to)
{
    return WithFirst(startTag, QString::number(from) + "px"_L1, QString::number(to) + "px"_L1);
}

/// Whether a line's start tag can be shifted.
bool IsShiftable(const Tag& tag)
{
    return tag.name.startsWith("DIV"_L1);
}

/// The id of a start tag given as text.
TagId Intern(TagTable& tags, const Tag& old, const QString& startTag)
{
    const qsizetype name = 1 + old.name.size();
    return tags.intern(old.name, QStringView(startTag).mid(name, startTag.size() - name - 1).trimmed());
}

/// Shifts lines; each distinct start tag is computed once.
template <typename Shift>
std::vector<LinePtr> ShiftLines(DisplayDocument& document, const SelectedLines& lines, Shift shift)
{
    QHash<TagId, TagId> shifted;
    std::vector<LinePtr> newLines;
    const int count = lines.last - lines.first + 1;
    newLines.reserve(std::size_t(count));
    for (int i = lines.first - 1; i < lines.last; ++i) {
        const LinePtr& old = document.linePtr(i);
        auto block = shifted.constFind(old->block);
        if (block == shifted.cend())
            block = shifted.insert(old->block, shift(old->block));
        if (*block == old->block) {
            newLines.push_back(old);
            continue;
        }
        Line line = *old;
        line.block = *block;
        newLines.push_back(MakeLine(std::move(line)));
    }
    return newLines;
}

/// Moves the caret or the selection to the position that the user expects after a shift.
void SelectShifted(DisplayDocument& document, const SelectedLines& lines, int caretMove, int characters)
{
    if (lines.caret)
        PutCaretBack(document, lines, {caretMove, 0}, characters);
    else
        SelectLines(document, lines);
}

} // namespace

QString ShiftedRight(const QString& startTag, int shift)
{
    if (!HasMargin(startTag))
        return WithFirst(startTag, u">"_s, " style=\"MARGIN-LEFT: "_L1 + QString::number(shift) + "px\">"_L1);
    const std::optional<int> margin = MarginOf(startTag);
    return margin ? WithMargin(startTag, *margin, *margin + shift) : startTag;
}

std::optional<QString> ShiftedLeft(const QString& startTag, int shift)
{
    const std::optional<int> margin = MarginOf(startTag);
    if (!margin || *margin < shift)
        return std::nullopt;
    return WithMargin(startTag, *margin, *margin - shift);
}

void RightShift(DisplayDocument& document, int pixels)
{
    const SelectedLines lines = TakeSelectedLines(document);
    if (!lines)
        return;

    TagTable& tags = document.tags();
    auto newLines = ShiftLines(document, lines, [&tags, pixels](TagId block) {
        const Tag& tag = tags[block];
        return IsShiftable(tag) ? Intern(tags, tag, ShiftedRight(tag.startTag(), pixels)) : block;
    });
    ReplaceLines(document, lines, std::move(newLines));
    MarkEdit(2);
    SelectShifted(document, lines, 2, 0);
}

void LeftShift(DisplayDocument& document, int pixels)
{
    const SelectedLines lines = TakeSelectedLines(document);
    if (!lines)
        return;

    TagTable& tags = document.tags();
    bool anyMargin = false;
    bool anyShifted = false;
    auto newLines = ShiftLines(document, lines, [&](TagId block) {
        const Tag& tag = tags[block];
        anyMargin = anyMargin || (IsShiftable(tag) && HasMargin(tag.startTag()));
        const auto shifted = IsShiftable(tag) ? ShiftedLeft(tag.startTag(), pixels) : std::nullopt;
        anyShifted = anyShifted || shifted;
        return shifted ? Intern(tags, tag, *shifted) : block;
    });
    if (lines.first == lines.last && !anyShifted)
        return;
    if (!anyMargin) {
        // No line can be shifted, yet the whole lines become the selection.
        SelectLines(document, lines);
        return;
    }
    ReplaceLines(document, lines, std::move(newLines));
    MarkEdit(2);
    SelectShifted(document, lines, 0, -1);
}

} // namespace vmk
