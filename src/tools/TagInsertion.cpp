#include "TagInsertion.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "HtmlWriter.h"
#include "Repaint.h"
#include "TextFunctions.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Returns the tag without superfluous blanks.
QString TidyTag(const QString& line)
{
    QString tag = CollapseRepeats(line, u" ");
    if (!tag.contains(u'<') && !tag.contains(u'>'))
        tag = tag.trimmed();
    tag.replace("< "_L1, "<"_L1).replace(" >"_L1, ">"_L1).replace(" />"_L1, "/>"_L1);
    return tag;
}

/// Returns the name of the end tag for a tag; empty if the tag needs none.
QString EndTagName(const QString& tag)
{
    if (tag.contains("/>"_L1) || tag.contains("</"_L1))
        return {};
    return tag.trimmed().section(u' ', 0, 0).remove(u'<').remove(u'>');
}

QString Painted(const QString& text, const TagPaint& paint)
{
    QString html;
    WriteText(html, text);
    return RePaintHtml(html, paint);
}

QString LineOf(const QString& html)
{
    return "<DIV>"_L1 + html + "</DIV>"_L1;
}

} // namespace

void InsertTagFromList(DisplayDocument& document, const QString& line, bool closeTags, const TagPaint& paint)
{
    const QString tag = TidyTag(line);
    const QString endName = closeTags ? EndTagName(tag) : QString();
    const QString endTag
        = endName.isEmpty() ? QString() : u"<SPAN class=t>&lt;/%1&gt;</SPAN>"_s.arg(endName.toHtmlEscaped());
    QString startTag = Painted(tag, paint);

    TextRange range = page::createRange(document);
    // The line break after selected lines is not part of the replaced text.
    if (range.end().line > range.start().line && range.end().offset == 0)
        range.moveEnd(u"character", -1);
    const bool selected = !range.isEmpty();

    if (endTag.isEmpty() && CaretInsideTag(document)) {
        range.pasteHTML(startTag.remove("&lt;"_L1).remove("&gt;"_L1));
        range.select();
        MarkEdit(1);
        return;
    }

    const int first = NodeAtRangeStart(range);
    const int last = NodeAtRangeEnd(range);
    if (first >= 1 && last > first) {
        page::item(document, first).insertAdjacentHTML(Adjacent::BeforeBegin, LineOf(startTag));
        MarkEdit(1);
        if (!endTag.isEmpty()) {
            page::item(document, last + 1).insertAdjacentHTML(Adjacent::AfterEnd, LineOf(endTag));
            MarkEdit(2);
        }
        return;
    }

    const Position start = range.start();
    range.pasteHTML(startTag + range.htmlText() + endTag);
    if (selected)
        TextRange(document, start, range.end()).select();
    else
        range.select();
    MarkEdit(1);
}

} // namespace vmk
