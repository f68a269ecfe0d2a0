#pragma once

#include "DisplayDocument.h"

#include <QString>
#include <QStringList>

/// A plain model of each editing command on the text of the page: text in, text out.
namespace vmk::test {

/// Between the lines of a text; it counts as one character.
inline constexpr char16_t LineBreak = u'\n';
/// The visible marker of a non-breaking space.
inline constexpr char16_t Marker = u'\x7f';

/// The text of the page before a command, divided at the selection.
struct Place
{
    QStringList lines;
    Selection selection;
    QString left;
    QString selected;
    QString right;

    [[nodiscard]] bool caret() const { return selection.isEmpty(); }
    [[nodiscard]] bool lineBreaksOnly() const
    {
        return !caret() && QString(selected).remove(LineBreak).isEmpty();
    }
    [[nodiscard]] Position start() const { return selection.start(); }
    [[nodiscard]] Position end() const { return selection.end(); }
    [[nodiscard]] bool wholeLines() const
    {
        return start().line < end().line && start().offset == 0 && end().offset == lines[end().line].size();
    }
};

[[nodiscard]] QStringList TextLines(const DisplayDocument& document);
[[nodiscard]] Place PlaceIn(const QStringList& lines, const Selection& selection);
[[nodiscard]] Place PlaceOf(const DisplayDocument& document);

[[nodiscard]] QString Unchanged(const Place& place);
/// With a text instead of the selection.
[[nodiscard]] QString With(const Place& place, const QString& text);
/// Between two tags; several lines stay separate lines.
[[nodiscard]] QString Around(const Place& place, const QString& before, const QString& after);
[[nodiscard]] QString Deleted(const Place& place);
[[nodiscard]] QString WithSpace(const Place& place);
[[nodiscard]] QString ProperOf(const QString& text);
/// Lines pasted by the rule for the line of the caret.
[[nodiscard]] QString WithLines(const Place& place, const QStringList& pasted, bool asHtml);

} // namespace vmk::test
