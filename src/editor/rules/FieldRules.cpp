#include "FieldRules.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "HtmlWriter.h"
#include "TextRange.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QString NameOf(InlineTag kind)
{
    switch (kind) {
    case InlineTag::Bold:
        return u"strong"_s;
    case InlineTag::Italic:
        return u"emphasis"_s;
    case InlineTag::Superscript:
        return u"sup"_s;
    case InlineTag::Subscript:
        return u"sub"_s;
    }
    return {};
}

QString PaintedTag(const QString& text)
{
    return "<SPAN class=t>&lt;"_L1 + text + "&gt;</SPAN>"_L1;
}

/// Each piece between blanks with its first character in upper case and the rest in lower case.
QString ProperCase(const QString& text)
{
    QStringList words = text.split(u' ');
    for (QString& word : words)
        word = word.left(1).toUpper() + word.mid(1).toLower();
    return words.join(u' ');
}

QString InCase(const QString& text, LetterCase kind)
{
    switch (kind) {
    case LetterCase::Lower:
        return text.toLower();
    case LetterCase::Upper:
        return text.toUpper();
    case LetterCase::Proper:
        return ProperCase(text);
    }
    return text;
}

struct FieldForm
{
    QLatin1StringView start;
    QLatin1StringView end;
    QLatin1StringView empty;
};

FieldForm FormOf(Field kind)
{
    switch (kind) {
    case Field::Tag:
        return {"<SPAN class=et>"_L1, "</SPAN>"_L1, "<SPAN class=et>&nbsp;</SPAN>"_L1};
    case Field::Attribute:
        return {"<FONT class=en>"_L1, "</FONT>"_L1, "<FONT class=en>&nbsp;</FONT>"_L1};
    case Field::Value:
        // FONT is closed by the end of a SPAN, which is intended: the element ends together with the pasted
        // text.
        return {"<FONT class=ev>"_L1, "</SPAN>"_L1, "<FONT class=ev>&nbsp;</FONT>"_L1};
    case Field::Text:
        break;
    }
    return {"<SPAN class=b>"_L1, "</SPAN>"_L1, "<SPAN class=b>&nbsp;</SPAN>"_L1};
}

bool HoldsSpan(const TextRange& range)
{
    return range.touchesElement(u"SPAN") || range.htmlText().contains("<SPAN"_L1, Qt::CaseInsensitive);
}

/// Whether a painted piece is directly before or after the caret.
bool TouchesSpan(const TextRange& caret)
{
    TextRange neighbour = caret.duplicate();
    neighbour.moveEnd(TextUnit::Character, 1);
    if (HoldsSpan(neighbour))
        return true;
    neighbour = caret.duplicate();
    neighbour.moveStart(TextUnit::Character, -1);
    return HoldsSpan(neighbour);
}

/// The selected text in a field; a selection over several lines becomes one field per line.
QString FieldOf(const TextRange& range, const FieldForm& form)
{
    const DisplayDocument& document = *range.ofDocument();
    const bool oneLine = range.start().line == range.end().line;
    QString html;
    for (int i = range.start().line; i <= range.end().line; ++i) {
        const Line& line = document.line(i);
        const int from = i == range.start().line ? range.start().offset : 0;
        const int to = i == range.end().line ? range.end().offset : int(line.text.size());
        if (!oneLine)
            document.tags()[line.block].writeStart(html);
        if (from < to) {
            html += form.start;
            WriteText(html, QStringView(line.text).mid(from, to - from));
            html += form.end;
        }
        if (!oneLine)
            document.tags()[line.block].writeEnd(html);
    }
    return html;
}

} // namespace

void InsertInlineTag(DisplayDocument& document, InlineTag kind)
{
    const QString name = NameOf(kind);
    TextRange range = page::createRange(document);
    const bool hasText = range.start() != range.end();
    const Position start = range.start();
    range.pasteHTML(PaintedTag(name) + range.htmlText() + PaintedTag(u'/' + name));
    // A selection remains selected with its tags: the key a second time nests.
    if (hasText)
        TextRange(document, start, range.end()).select();
    else
        range.select();
    MarkEdit(1);
}

void ChangeCase(DisplayDocument& document, LetterCase kind)
{
    TextRange range = page::createRange(document);
    const QString text = InCase(range.text(), kind);
    const Position start = range.start();
    range.setText(text);
    // The changed text remains selected, also over line breaks.
    TextRange(document, start, range.end()).select();
    MarkEdit(1);
}

void InsertField(DisplayDocument& document, Field kind)
{
    const FieldForm form = FormOf(kind);
    TextRange range = page::createRange(document);
    if (range.boundingWidth() > 0) {
        range.pasteHTML(FieldOf(range, form));
        range.select();
        return;
    }
    // Empty lines show no selection, but none of them may be lost.
    range.collapse();
    if (TouchesSpan(range))
        return;
    range.pasteHTML(form.empty);
    range.moveStart(TextUnit::Character, -1);
    range.setText(kind == Field::Attribute ? u" "_s : QString());
    range.select();
}

} // namespace vmk
