#include "PasteRules.h"

#include "BookVariables.h"
#include "Cancelling.h"
#include "DisplayPage.h"
#include "EditLines.h"
#include "LineEdit.h"
#include "NonBreakingSpace.h"
#include "RegExp.h"
#include "TextFunctions.h"
#include "TextRange.h"

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView LineEnd = "</DIV>"_L1;

/// True if the text is only blanks; a tab, a line end or a non-breaking space is text.
bool IsEmptyText(QStringView text)
{
    return std::ranges::all_of(text, [](QChar c) { return c == u' '; });
}

bool HoldsLines(const QString& html)
{
    return html.contains("<DIV"_L1, Qt::CaseInsensitive);
}

/// A line's start tag with its class and style; a plain `DIV` if the line is in another block.
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

/// The caret's line, split at the caret.
struct SplitLine
{
    DisplayElement line;
    QString opening; ///< Of the line itself.
    QString alike; ///< For further lines like it: only the first keeps an identifier.
    bool hasLeft = false; ///< There is text to the left of the caret.
    bool hasRight = false;
    QString left; ///< The HTML to the left of the caret, with its painting.
    QString right;
};

SplitLine SplitAt(DisplayDocument& document, const TextRange& caret, int node)
{
    SplitLine split;
    split.line = page::item(document, node);
    TagTable& tags = document.tags();
    const TagId block = document.line(split.line.line()).block;
    split.opening = OpeningOf(tags[block]);
    split.alike = tags[block].id.isEmpty() ? split.opening
                                           : OpeningOf(tags[tags.withAttribute(block, u"id", QString())]);

    const int index = split.line.line();
    const Line& line = document.line(index);
    const Cut lineEnd{int(line.text.size()), line.marks.size()};
    split.left = HtmlBetween(document, index, {}, RangeEndCut(line, caret.start().offset));
    split.hasLeft = !IsEmptyText(QStringView(line.text).first(caret.start().offset));
    // If the selection ends in another line, no text remains on the right.
    if (caret.end().line == index) {
        split.right = HtmlBetween(document, index, RangeStartCut(line, caret.end().offset), lineEnd);
        split.hasRight = !IsEmptyText(QStringView(line.text).sliced(caret.end().offset));
    }
    return split;
}

/// Inserts lines after a line. The empty line that is left of a page without text gives way to them.
void InsertAfter(DisplayDocument& document, DisplayElement& line, const QString& html)
{
    if (!document.hasLine(1) && document.line(0).text.isEmpty())
        line.setOuterHTML(html);
    else
        line.insertAdjacentHTML(Adjacent::AfterEnd, html);
}

/// Moves the caret after the pasted text, counted from the last press.
void PositionAfter(TextRange& range, QPoint lastPress, int characters)
{
    range.moveToPoint(lastPress.x(), lastPress.y());
    range.move(TextUnit::Character, characters);
    range.select();
}

/// Runs a paste that the user can cancel: the text is then as before it, and nothing is marked as edited.
/// \param paste  returns early at a cancellation; what it has inserted is removed again
template <typename Paste>
void RunCancellable(DisplayDocument& document, Paste paste)
{
    const CancellableWork work(u"...pasting...Esc cancels"_s, u"paste cancelled"_s);
    const std::size_t steps = document.undoSteps();
    paste();
    if (CancellableWork::wasCancelled() && document.undoSteps() > steps)
        document.undo(int(document.undoSteps() - steps));
}

void PasteTextAtCaret(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp)
{
    QString html = CollapseRepeats(ReplaceAll(std::move(clipboard), u"&nbsp;", u" "), u" ");
    html.replace(QLatin1Char(NbspMarker), nbsp);

    TextRange range = page::createRange(document);
    if (!HoldsLines(html)) {
        range.pasteHTML(html);
        if (CancellableWork::isCancelled())
            return;
        range.select();
        // The key handler has recorded the edit; from the menu it is not recorded, which is intended.
        UndoSteps = 1;
        return;
    }
    const int node = NodeAtRangeStart(range);
    if (node <= 0) {
        // Outside a line nothing is pasted, yet this counts as an edit; both are intended.
        MarkEdit(1);
        return;
    }

    SplitLine split = SplitAt(document, range, node);
    html = WithBlocksAsLines(std::move(html), split.alike);
    int length = TextLengthOfHtml(html);
    if (!split.hasLeft && split.hasRight) {
        split.line.insertAdjacentHTML(Adjacent::BeforeBegin, html);
    } else if (split.hasLeft && split.hasRight) {
        html = RegExpReplace(QStringView(html), u"<DIV[^>]*>", u"", false);
        html = ReplaceAll(std::move(html), u"</DIV>", u"");
        split.line.setOuterHTML(split.opening + split.left + html + split.right + LineEnd);
    } else {
        InsertAfter(document, split.line, html);
        ++length;
    }
    if (CancellableWork::isCancelled())
        return;
    PositionAfter(range, lastPress, length);
    MarkEdit(1);
}

void PasteLinesAtCaret(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp)
{
    QString html = ReplaceAll(std::move(clipboard), u"&nbsp;", QString(nbsp));

    TextRange range = page::createRange(document);
    const int node = NodeAtRangeStart(range);
    if (node < 1 || NodeAtRangeEnd(range) <= 0) {
        MarkEdit(1);
        return;
    }

    SplitLine split = SplitAt(document, range, node);
    html = WithBlocksAsLines(std::move(html), split.alike);
    const bool isAbove = !split.hasLeft && split.hasRight;
    if (isAbove)
        split.line.insertAdjacentHTML(Adjacent::BeforeBegin, html);
    else if (split.hasLeft && split.hasRight)
        split.line.setOuterHTML(split.opening + split.left + LineEnd + html + split.alike + split.right
                                + LineEnd);
    else
        InsertAfter(document, split.line, html);
    if (CancellableWork::isCancelled())
        return;
    if (isAbove) {
        range.move(TextUnit::Character, -1);
        range.collapse();
        range.select();
    } else {
        PositionAfter(range, lastPress, TextLengthOfHtml(html) + 1);
    }
    MarkEdit(1);
}

} // namespace

int TextLengthOfHtml(QString html)
{
    html = RegExpReplace(QStringView(html), u"<[^>]*>", u"", false);
    html = ReplaceAll(std::move(html), u"&lt;", u"<");
    html = ReplaceAll(std::move(html), u"&gt;", u">");
    return int(ReplaceAll(std::move(html), u"\r\n", u"").size());
}

void PasteText(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp)
{
    if (!IsEmptyText(clipboard))
        RunCancellable(document, [&] { PasteTextAtCaret(document, std::move(clipboard), lastPress, nbsp); });
}

void PasteHtml(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp)
{
    if (!IsEmptyText(clipboard))
        RunCancellable(document, [&] { PasteLinesAtCaret(document, std::move(clipboard), lastPress, nbsp); });
}

} // namespace vmk
