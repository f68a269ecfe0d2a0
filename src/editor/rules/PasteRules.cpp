#include "PasteRules.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "Globals.h"
#include "RegExp.h"
#include "TextFunctions.h"
#include "TextRange.h"

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView LineEnd = "</DIV>"_L1;

/// Nothing but white space that shows nothing; a non-breaking space is text.
bool IsEmptyText(const QString& text)
{
    return std::ranges::all_of(text, [](QChar c) { return QStringView(u" \t\r\n").contains(c); });
}

bool HoldsLines(const QString& html)
{
    return html.contains("<DIV"_L1, Qt::CaseInsensitive);
}

/// A line's start tag with its class and style; a bare one if it stands in another block.
QString OpeningOf(const Tag& tag)
{
    return tag.name == "DIV"_L1 ? tag.startTag() : u"<DIV>"_s;
}

/// Paragraphs become lines; a text without any becomes one line.
QString WithBlocksAsLines(QString html, const QString& opening)
{
    html = RegExpReplace(QStringView(html), u"<P[^>]*>", u"<DIV>", false);
    html = ReplaceAll(std::move(html), u"</P>", u"</DIV>");
    if (HoldsLines(html))
        return html;
    return opening + ReplaceAll(std::move(html), u"</DIV>", u"") + LineEnd;
}

/// The caret's line, parted at the caret.
struct SplitLine
{
    DisplayElement line;
    QString opening; ///< Of the line itself.
    QString alike; ///< For further lines like it: an identifier stays with the first.
    TextRange left;
    TextRange right;

    [[nodiscard]] bool hasLeft() const { return !IsEmptyText(left.text()); }
    [[nodiscard]] bool hasRight() const { return !IsEmptyText(right.text()); }
};

SplitLine SplitAt(DisplayDocument& document, const TextRange& caret, int node)
{
    SplitLine split;
    split.line = item(document, node);
    TagTable& tags = document.tags();
    const TagId block = document.line(split.line.line()).block;
    split.opening = OpeningOf(tags[block]);
    split.alike = tags[block].id.isEmpty() ? split.opening
                                           : OpeningOf(tags[tags.withAttribute(block, u"id", QString())]);
    split.left = TextRange(document, split.line.contentStart(), split.line.contentEnd());
    split.right = split.left.duplicate();
    split.left.setEndPoint(u"EndToStart", caret);
    split.right.setEndPoint(u"StartToEnd", caret);
    return split;
}

/// The caret behind what was pasted, as counted from the last press.
void PlaceBehind(TextRange& range, QPoint lastPress, int characters)
{
    range.moveToPoint(lastPress.x(), lastPress.y());
    range.move(u"character", characters);
    range.select();
}

} // namespace

int TextLengthOfHtml(QString html)
{
    html = RegExpReplace(QStringView(html), u"<[^>]*>", u"", false);
    html = ReplaceAll(std::move(html), u"&lt;", u"<");
    html = ReplaceAll(std::move(html), u"&gt;", u">");
    return int(ReplaceAll(std::move(html), u"\r\n", u"").size());
}

void PasteText(DisplayDocument& document, QString clipboard, QPoint lastPress)
{
    if (IsEmptyText(clipboard))
        return;
    QString html = CollapseRepeats(ReplaceAll(std::move(clipboard), u"&nbsp;", u" "), u" ");
    if (ShowNbsp != 1)
        html = ReplaceAll(std::move(html), QString(QLatin1Char(NbspMarker)), u"\u00a0");

    TextRange range = createRange(document);
    if (!HoldsLines(html)) {
        range.pasteHTML(html);
        range.select();
        // The key has noted the edit already; from the menu it goes unnoted, which is meant.
        UndoSteps = 1;
        return;
    }
    const int node = NodeAtRangeStart(range);
    if (node <= 0) {
        // Nothing is pasted outside a line, yet it counts as an edit; both are meant.
        MarkEdit(1);
        return;
    }

    SplitLine split = SplitAt(document, range, node);
    html = WithBlocksAsLines(std::move(html), split.alike);
    int length = TextLengthOfHtml(html);
    if (!split.hasLeft() && split.hasRight()) {
        split.line.insertAdjacentHTML(u"beforeBegin", html);
    } else if (split.hasLeft() && split.hasRight()) {
        html = RegExpReplace(QStringView(html), u"<DIV[^>]*>", u"", false);
        html = ReplaceAll(std::move(html), u"</DIV>", u"");
        split.line.setOuterHTML(split.opening + split.left.htmlText() + html + split.right.htmlText()
                                + LineEnd);
    } else {
        split.line.insertAdjacentHTML(u"afterEnd", html);
        ++length;
    }
    PlaceBehind(range, lastPress, length);
    MarkEdit(1);
}

void PasteHtml(DisplayDocument& document, QString clipboard, QPoint lastPress)
{
    if (IsEmptyText(clipboard))
        return;
    const QString nbsp = ShowNbsp == 1 ? QString(QLatin1Char(NbspMarker)) : QString(QChar(0xa0));
    QString html = ReplaceAll(std::move(clipboard), u"&nbsp;", nbsp);

    TextRange range = createRange(document);
    const int node = NodeAtRangeStart(range);
    if (node < 1 || NodeAtRangeEnd(range) <= 0) {
        MarkEdit(1);
        return;
    }

    SplitLine split = SplitAt(document, range, node);
    html = WithBlocksAsLines(std::move(html), split.alike);
    if (!split.hasLeft() && split.hasRight()) {
        split.line.insertAdjacentHTML(u"beforeBegin", html);
        range.move(u"character", -1);
        range.collapse();
        range.select();
    } else {
        const int length = TextLengthOfHtml(html) + 1;
        if (split.hasLeft() && split.hasRight())
            split.line.setOuterHTML(split.opening + split.left.htmlText() + LineEnd + html + split.alike
                                    + split.right.htmlText() + LineEnd);
        else
            split.line.insertAdjacentHTML(u"afterEnd", html);
        PlaceBehind(range, lastPress, length);
    }
    MarkEdit(1);
}

} // namespace vmk
