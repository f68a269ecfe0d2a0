#include "PasteRules.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "Globals.h"
#include "RegExp.h"
#include "TextFunctions.h"
#include "TextRange.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView LineEnd = "</DIV>"_L1;

bool HoldsLines(const QString& html)
{
    return html.contains("<DIV"_L1, Qt::CaseInsensitive);
}

/// The line's own start tag; a bare one if it stands in another block.
QString OpeningOf(const DisplayElement& line)
{
    const QString html = line.outerHTML();
    const qsizetype start = html.indexOf("<DIV"_L1, 0, Qt::CaseInsensitive);
    const qsizetype end = start < 0 ? -1 : html.indexOf(u'>', start);
    return end < 0 ? u"<DIV>"_s : html.mid(start, end - start + 1);
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
    QString opening;
    TextRange left;
    TextRange right;

    [[nodiscard]] bool hasLeft() const { return !left.text().trimmed().isEmpty(); }
    [[nodiscard]] bool hasRight() const { return !right.text().trimmed().isEmpty(); }
};

SplitLine SplitAt(DisplayDocument& document, const TextRange& caret, int node)
{
    SplitLine split;
    split.line = item(document, node);
    split.opening = OpeningOf(split.line);
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
    if (clipboard.trimmed().isEmpty())
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
    html = WithBlocksAsLines(std::move(html), split.opening);
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
    if (clipboard.trimmed().isEmpty())
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
    html = WithBlocksAsLines(std::move(html), split.opening);
    if (!split.hasLeft() && split.hasRight()) {
        split.line.insertAdjacentHTML(u"beforeBegin", html);
        range.move(u"character", -1);
        range.collapse();
        range.select();
    } else {
        const int length = TextLengthOfHtml(html) + 1;
        if (split.hasLeft() && split.hasRight())
            split.line.setOuterHTML(split.opening + split.left.htmlText() + LineEnd + html + split.opening
                                    + split.right.htmlText() + LineEnd);
        else
            split.line.insertAdjacentHTML(u"afterEnd", html);
        PlaceBehind(range, lastPress, length);
    }
    MarkEdit(1);
}

} // namespace vmk
