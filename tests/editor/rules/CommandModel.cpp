#include "CommandModel.h"

namespace vmk::test {

using namespace Qt::StringLiterals;

QStringList TextLines(const DisplayDocument& document)
{
    QStringList lines;
    for (int i = 0; i < document.lineCount(); ++i)
        lines.append(document.line(i).text);
    return lines;
}

Place PlaceIn(const QStringList& lines, const Selection& selection)
{
    Place place{lines, selection, {}, {}, {}};
    const QString all = place.lines.join(LineBreak);
    const auto index = [&lines](Position position) {
        qsizetype before = position.offset;
        for (int i = 0; i < position.line; ++i)
            before += lines[i].size() + 1;
        return before;
    };
    const qsizetype from = index(place.start());
    const qsizetype to = index(place.end());
    place.left = all.left(from);
    place.selected = all.mid(from, to - from);
    place.right = all.mid(to);
    return place;
}

Place PlaceOf(const DisplayDocument& document)
{
    return PlaceIn(TextLines(document), document.selection());
}

QString Unchanged(const Place& place)
{
    return place.lines.join(LineBreak);
}

QString Around(const Place& place, const QString& before, const QString& after)
{
    const QString lineEnd = place.start().line < place.end().line ? QString(LineBreak) : QString();
    return place.left + before + lineEnd + place.selected + lineEnd + after + place.right;
}

QString With(const Place& place, const QString& text)
{
    return place.left + text + place.right;
}

QString Deleted(const Place& place)
{
    if (!place.wholeLines())
        return With(place, {});
    // Several complete lines are removed as lines, with one of the line breaks around them.
    return place.right.isEmpty() ? place.left.chopped(place.left.isEmpty() ? 0 : 1)
                                 : place.left + place.right.mid(1);
}

QString WithSpace(const Place& place)
{
    const bool swallowed = place.left.endsWith(u' ') || place.right.startsWith(u' ');
    return swallowed ? Unchanged(place) : With(place, u" "_s);
}

QString ProperOf(const QString& text)
{
    QString made;
    bool first = true;
    for (const QChar c : text) {
        made += first ? c.toUpper() : c.toLower();
        first = c == u' ';
    }
    return made;
}

QString WithLines(const Place& place, const QStringList& pasted, bool asHtml)
{
    const int line = place.start().line;
    const QString& text = place.lines[line];
    const QString left = text.left(place.start().offset);
    // A selection that continues in another line leaves no text to the right.
    const QString right = place.end().line == line ? text.mid(place.end().offset) : QString();
    const auto blank = [](QString part) { return part.remove(u' ').isEmpty(); };

    QStringList lines = place.lines;
    if (!blank(left) && !blank(right)) {
        QStringList made{left + pasted.join(u' ') + right};
        if (asHtml)
            made = QStringList{left} + pasted + QStringList{right};
        lines = lines.mid(0, line) + made + lines.mid(line + 1);
    } else {
        const int at = blank(left) && !blank(right) ? line : line + 1;
        lines = lines.mid(0, at) + pasted + lines.mid(at);
    }
    return lines.join(LineBreak);
}

} // namespace vmk::test
