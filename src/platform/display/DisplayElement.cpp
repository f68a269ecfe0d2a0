#include "DisplayElement.h"

#include "HtmlWriter.h"
#include "LayoutQuery.h"
#include "LineEdit.h"

#include <QRegularExpression>

namespace vmk {

namespace {

/// The margin in a style: the number before `px`.
const QRegularExpression& MarginPattern()
{
    static const QRegularExpression pattern(QStringLiteral("margin-left\\s*:\\s*(-?\\d+)\\s*px"),
                                            QRegularExpression::CaseInsensitiveOption
                                                | QRegularExpression::DontCaptureOption);
    return pattern;
}

} // namespace

DisplayElement::DisplayElement(DisplayDocument& ofDocument, int ofLine)
    : document(&ofDocument)
    , lineIndex(ofLine)
{
}

DisplayElement::DisplayElement(DisplayDocument& ofDocument, int ofLine, std::size_t ofMark)
    : document(&ofDocument)
    , lineIndex(ofLine)
    , markIndex(ofMark)
{
}

bool DisplayElement::exists() const
{
    if (!document || lineIndex < 0 || !document->hasLine(lineIndex))
        return false;
    const Line& line = document->line(lineIndex);
    if (isInline())
        return markIndex < line.marks.size() && line.marks[markIndex].open;
    return line.block != NoTag;
}

/// The index of the end tag that matches the start tag.
std::size_t DisplayElement::closingMark() const
{
    const Line& line = document->line(lineIndex);
    int depth = 0;
    std::size_t i = markIndex;
    do {
        depth += line.marks[i].open ? 1 : -1;
        ++i;
    } while (depth > 0);
    return i - 1;
}

// ---------------------------------------------------------------- tag and attributes

TagId DisplayElement::tag() const
{
    if (!exists())
        return NoTag;
    const Line& line = document->line(lineIndex);
    return isInline() ? TagId(line.marks[markIndex].tag) : line.block;
}

void DisplayElement::setTag(TagId newTag)
{
    if (!exists() || newTag == tag())
        return;
    if (!isInline())
        return document->setBlock(lineIndex, newTag);
    Line line = document->line(lineIndex);
    const std::size_t closing = closingMark();
    std::vector<Mark> marks = line.marks.toVector();
    marks[markIndex].tag = marks[closing].tag = newTag & 0x7FFFFFFF;
    line.marks = marks;
    const Position start{lineIndex, 0};
    document->splice(lineIndex, 1, {MakeLine(std::move(line))}, {start, start, start});
}

QString DisplayElement::nodeName() const
{
    return exists() ? document->tags()[tag()].name : QString();
}

QString DisplayElement::id() const
{
    return exists() ? document->tags()[tag()].id : QString();
}

void DisplayElement::setId(const QString& id)
{
    if (exists())
        setTag(document->tags().withAttribute(tag(), u"id", id.isEmpty() ? QString() : id));
}

QString DisplayElement::className() const
{
    return exists() ? document->tags()[tag()].className : QString();
}

QString DisplayElement::getAttribute(QStringView name) const
{
    return exists() ? document->tags()[tag()].value(name) : QString();
}

int DisplayElement::marginLeft() const
{
    static const QRegularExpression number(QStringLiteral("-?\\d+"));
    const QString margin
        = exists() ? MarginPattern().match(document->tags()[tag()].style).captured() : QString();
    return number.match(margin).captured().toInt();
}

void DisplayElement::setMarginLeft(int pixels)
{
    if (!exists())
        return;
    // In the browser's spelling, which other code searches for.
    const QString margin = QStringLiteral("MARGIN-LEFT: %1px").arg(pixels);
    QString style = document->tags()[tag()].style;
    if (style.contains(MarginPattern()))
        style.replace(MarginPattern(), margin);
    else
        style = style.isEmpty() ? margin : margin + QStringLiteral("; ") + style;
    setTag(document->tags().withAttribute(tag(), u"style", style));
}

// ---------------------------------------------------------------- content

Position DisplayElement::contentStart() const
{
    if (!exists())
        return {};
    return {lineIndex, isInline() ? document->line(lineIndex).marks[markIndex].pos : 0};
}

Position DisplayElement::contentEnd() const
{
    if (!exists())
        return {};
    const Line& line = document->line(lineIndex);
    return {lineIndex, isInline() ? int(line.marks[closingMark()].pos) : int(line.text.size())};
}

QString DisplayElement::innerText() const
{
    if (!exists())
        return {};
    const int from = contentStart().offset;
    return document->line(lineIndex).text.mid(from, contentEnd().offset - from);
}

QString DisplayElement::outerHTML() const
{
    QString html;
    if (!exists())
        return html;
    const Line& line = document->line(lineIndex);
    if (isInline()) {
        const std::size_t closing = closingMark();
        const Cut from{line.marks[markIndex].pos, markIndex};
        const Cut to{line.marks[closing].pos, closing + 1};
        WriteContent(html, document->tags(), ContentBetween(line, from, to));
    } else {
        WriteLine(html, document->tags(), line);
    }
    return html;
}

void DisplayElement::setOuterHTML(const QString& html)
{
    if (!exists())
        return;
    if (!isInline())
        return document->replaceLines(lineIndex, 1, html);
    const auto& marks = document->line(lineIndex).marks;
    const std::size_t closing = closingMark();
    document->replaceHtml(lineIndex, {marks[markIndex].pos, markIndex}, {marks[closing].pos, closing + 1},
                          html);
}

void DisplayElement::insertAdjacentHTML(Adjacent where, const QString& html)
{
    const bool before = where == Adjacent::BeforeBegin;
    if (!document || lineIndex < 0)
        return;
    if (!isInline())
        return document->insertLines(before ? lineIndex : lineIndex + 1, html);
    if (!exists())
        return;
    const auto& marks = document->line(lineIndex).marks;
    const std::size_t closing = closingMark();
    const Cut at = before ? Cut{marks[markIndex].pos, markIndex} : Cut{marks[closing].pos, closing + 1};
    document->replaceHtml(lineIndex, at, at, html);
}

void DisplayElement::scrollIntoView() const
{
    if (exists() && document->layout())
        document->layout()->scrollIntoView(contentStart());
}

} // namespace vmk
