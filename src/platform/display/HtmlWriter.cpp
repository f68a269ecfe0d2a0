#include "HtmlWriter.h"

#include "HtmlElements.h"

namespace vmk {

namespace {

/// Appends characters of a line's text. `text` is the whole text, so that `protectBlanks` can check
/// neighbours.
void WriteCharacters(QString& html, QStringView text, qsizetype from, qsizetype to, bool protectBlanks)
{
    qsizetype plainFrom = from;
    const auto replaceAt = [&](qsizetype i, QStringView replacement) {
        html.append(text.sliced(plainFrom, i - plainFrom));
        html.append(replacement);
        plainFrom = i + 1;
    };
    for (qsizetype i = from; i < to; ++i) {
        switch (text[i].unicode()) {
        case u'<':
            replaceAt(i, u"&lt;");
            break;
        case u'>':
            replaceAt(i, u"&gt;");
            break;
        case u'&':
            replaceAt(i, u"&amp;");
            break;
        case 0xA0:
            replaceAt(i, u"&nbsp;");
            break;
        case u' ':
            if (protectBlanks && (i == 0 || i + 1 == text.size() || text[i - 1] == u' '))
                replaceAt(i, u"&nbsp;");
            break;
        default:
            break;
        }
    }
    html.append(text.sliced(plainFrom, to - plainFrom));
}

} // namespace

void WriteText(QString& html, QStringView text)
{
    WriteCharacters(html, text, 0, text.size(), false);
}

void WriteContent(QString& html, const TagTable& tags, const Line& line, Blanks blanks)
{
    const bool protectBlanks = blanks == Blanks::Protected && tags[line.block].name != u"PRE";
    qsizetype at = 0;
    for (const Mark& mark : line.marks) {
        WriteCharacters(html, line.text, at, mark.pos, protectBlanks);
        at = mark.pos;
        const Tag& tag = tags[mark.tag];
        if (mark.open)
            tag.writeStart(html);
        else if (KindOfElement(tag.name) != ElementKind::Void)
            tag.writeEnd(html);
    }
    WriteCharacters(html, line.text, at, line.text.size(), protectBlanks);
}

void WriteLine(QString& html, const TagTable& tags, const Line& line, Blanks blanks)
{
    const Tag& block = tags[line.block];
    const bool hasTag = line.block != NoTag;
    if (hasTag)
        block.writeStart(html);
    WriteContent(html, tags, line, blanks);
    if (hasTag && block.name != u"HR")
        block.writeEnd(html);
}

} // namespace vmk
