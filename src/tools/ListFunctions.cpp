#include "ListFunctions.h"

#include "FileOperations.h"
#include "LineEnds.h"
#include "UserText.h"

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

QStringList FilledLines(const QStringList& lines)
{
    QStringList filled;
    for (const QString& line : lines) {
        if (const QString trimmed = line.trimmed(); !trimmed.isEmpty())
            filled.append(trimmed);
    }
    return filled;
}

} // namespace

QStringList ReadTagFile(const QString& path)
{
    constexpr qsizetype LongestEmptyText = 4;
    QString text = DecodeUserText(ReadFileText(path));
    if (text.size() <= LongestEmptyText)
        return {};
    // Other editors write other line ends.
    return FilledLines(text.replace(u'\r', u'\n').split(u'\n'));
}

bool WriteTagFile(const QStringList& lines, const QString& path, QStringList& kept)
{
    kept = FilledLines(lines);
    QString text;
    for (const QString& line : kept)
        text += line + QLatin1StringView(CrLf);
    return WriteFileText(path, EncodeUserText(text));
}

QString InLineTagOf(const QString& text)
{
    QString name = text.trimmed();
    name.remove(u'<').remove(u'>').remove(u' ');
    return name.isEmpty() ? QString() : u'<' + name.toLower() + u'>';
}

QStringList DefaultFbTags()
{
    return {u"<p>"_s,
            u"<title>"_s,
            u"<subtitle>"_s,
            u"<epigraph>"_s,
            u"<poem>"_s,
            u"<stanza>"_s,
            u"<section>"_s,
            u"<section id=\"\">"_s,
            u"<a :href=\"#\">"_s,
            u"<a :href=\"#\" type=\"\">"_s,
            u"<image :href=\"#\"/>"_s,
            u"<empty-line/>"_s,
            u"<strong>"_s,
            u"<emphasis>"_s,
            u"<sup>"_s,
            u"<sub>"_s};
}

} // namespace vmk
