#include "TextRange.h"

#include "DisplayElement.h"
#include "HtmlWriter.h"
#include "LayoutQuery.h"
#include "LineEdit.h"
#include "TextSearch.h"
#include "WordBreaks.h"

#include <algorithm>

namespace vmk {

namespace {

bool IsName(QStringView given, QStringView name)
{
    return given.compare(name, Qt::CaseInsensitive) == 0;
}

bool IsOwnStart(EndPoints how)
{
    return how == EndPoints::StartToStart || how == EndPoints::StartToEnd;
}

bool IsOtherStart(EndPoints how)
{
    return how == EndPoints::StartToStart || how == EndPoints::EndToStart;
}

/// Moves by characters, and through a surrogate pair in the direction of the move.
Position MovedByCharacters(const DisplayDocument& document, Position place, int count)
{
    // Short distances are walked, long ones looked up.
    constexpr int ShortWay = 256;
    Position target = place;
    const int length = int(document.line(place.line).text.size());
    if (place.offset + qint64(count) >= 0 && place.offset + qint64(count) <= length)
        target.offset += count;
    else if (count == 1 && document.hasLine(place.line + 1))
        target = {place.line + 1, 0};
    else if (count == -1 && place.line > 0)
        target = {place.line - 1, int(document.line(place.line - 1).text.size())};
    else if (std::abs(qint64(count)) <= ShortWay && count > 0 && document.hasLine(place.line + 1))
        return MovedByCharacters(document, {place.line + 1, 0}, count - (length - place.offset) - 1);
    else if (std::abs(qint64(count)) <= ShortWay && count < 0 && place.line > 0)
        return MovedByCharacters(document, {place.line - 1, int(document.line(place.line - 1).text.size())},
                                 count + place.offset + 1);
    else
        target = document.positionAt(document.characterIndex(place) + count);

    const Position whole = document.valid(target);
    // `valid` moves to the start of the pair; a forward move ends after the pair.
    return whole != target && count > 0 ? Position{whole.line, whole.offset + 2} : whole;
}

/// The number of characters between two positions, negative if the second one is first.
int Distance(const DisplayDocument& document, Position from, Position to)
{
    constexpr int NearbyLines = 64;
    if (to < from)
        return -Distance(document, to, from);
    if (to.line - from.line > NearbyLines)
        return int(document.characterIndex(to) - document.characterIndex(from));
    qsizetype length = to.offset - from.offset;
    for (int i = from.line; i < to.line; ++i)
        length += document.line(i).text.size() + 1;
    return int(length);
}

} // namespace

// ---------------------------------------------------------------- lifetime

TextRange::TextRange(DisplayDocument& ofDocument, Position from, Position to)
{
    attach(&ofDocument);
    first = ofDocument.valid(std::min(from, to));
    last = ofDocument.valid(std::max(from, to));
}

TextRange::TextRange(const TextRange& other)
    : first(other.first)
    , last(other.last)
{
    attach(other.document);
}

TextRange& TextRange::operator=(const TextRange& other)
{
    if (this == &other)
        return *this;
    attach(other.document);
    first = other.first;
    last = other.last;
    return *this;
}

TextRange::~TextRange()
{
    attach(nullptr);
}

void TextRange::attach(DisplayDocument* newDocument)
{
    if (newDocument == document)
        return;
    if (document) {
        // The last range of the list moves to the free index.
        auto& ranges = document->liveRanges;
        ranges[registration] = ranges.back();
        ranges[registration]->registration = registration;
        ranges.pop_back();
    }
    document = newDocument;
    if (document) {
        registration = document->liveRanges.size();
        document->liveRanges.push_back(this);
    }
}

// ---------------------------------------------------------------- text and HTML

QString TextRange::text() const
{
    if (!document)
        return {};
    if (first.line == last.line)
        return document->line(first.line).text.mid(first.offset, last.offset - first.offset);

    QString result = document->line(first.line).text.mid(first.offset);
    for (int i = first.line + 1; i < last.line; ++i) {
        result += u"\r\n";
        result += document->line(i).text;
    }
    result += u"\r\n";
    result += QStringView(document->line(last.line).text).first(last.offset);
    return result;
}

void TextRange::setText(const QString& text)
{
    if (document)
        first = last = document->replaceText(first, last, text);
}

QString TextRange::htmlText() const
{
    QString html;
    if (!document || isEmpty())
        return html;
    if (first.line == last.line) {
        const Line& line = document->line(first.line);
        const Line piece
            = ContentBetween(line, RangeStartCut(line, first.offset), RangeEndCut(line, last.offset));
        WriteContent(html, document->tags(), piece);
        return html;
    }
    for (int i = first.line; i <= last.line; ++i) {
        const Line& line = document->line(i);
        const Cut lineEnd{int(line.text.size()), line.marks.size()};
        const Cut from = i == first.line && first.offset > 0 ? RangeStartCut(line, first.offset) : Cut();
        const Cut to
            = i == last.line && last.offset < line.text.size() ? RangeEndCut(line, last.offset) : lineEnd;
        if (i > first.line)
            html += u"\r\n";
        WriteLine(html, document->tags(), ContentBetween(line, from, to));
    }
    return html;
}

void TextRange::pasteHTML(const QString& html)
{
    if (document)
        first = last = document->replaceHtml(first, last, html);
}

bool TextRange::execCommand(QStringView command, bool, const QString& value)
{
    if (!document || isEmpty())
        return false;
    const TagId font = document->tags().intern(u"FONT", {});
    TagId tag = NoTag;
    if (IsName(command, u"BackColor"))
        tag = document->tags().withAttribute(font, u"style", QStringLiteral("BACKGROUND-COLOR: ") + value);
    else if (IsName(command, u"ForeColor"))
        tag = document->tags().withAttribute(font, u"color", value);
    if (tag == NoTag)
        return false;
    document->wrapRange(first, last, tag);
    return true;
}

bool TextRange::touchesElement(QStringView name) const
{
    if (!document || first.line != last.line)
        return false;
    const Line& line = document->line(first.line);
    const auto isOpenAt = [&](Cut cut) {
        const std::vector<TagId> open = ElementsAt(line, cut);
        return std::any_of(open.begin(), open.end(),
                           [&](TagId tag) { return IsName(document->tags()[tag].name, name); });
    };
    const Cut from = RangeStartCut(line, first.offset);
    const Cut to = RangeEndCut(line, last.offset);
    return isEmpty() ? isOpenAt(from) || isOpenAt(to) : isOpenAt(from) && isOpenAt(to);
}

// ---------------------------------------------------------------- movement

Position TextRange::movedBy(TextUnit unit, Position place, int count, int& moved) const
{
    moved = 0;
    Position target = place;
    switch (unit) {
    case TextUnit::Character:
        target = MovedByCharacters(*document, place, count);
        if (target != place)
            moved = Distance(*document, place, target);
        break;
    case TextUnit::Textedit:
        target = count == 0 ? place : count < 0 ? Position() : document->end();
        moved = target == place ? 0 : count < 0 ? -1 : 1;
        break;
    case TextUnit::Word: {
        const int step = count < 0 ? -1 : 1;
        while (moved != count) {
            const Position next
                = step > 0 ? NextWordStart(*document, target) : PreviousWordStart(*document, target);
            if (next == target)
                break;
            target = next;
            moved += step;
        }
        break;
    }
    }
    return target;
}

int TextRange::moveStart(TextUnit unit, int count)
{
    int moved = 0;
    if (document)
        first = movedBy(unit, first, count, moved);
    last = std::max(first, last);
    return moved;
}

int TextRange::moveEnd(TextUnit unit, int count)
{
    int moved = 0;
    if (document)
        last = movedBy(unit, last, count, moved);
    first = std::min(first, last);
    return moved;
}

int TextRange::move(TextUnit unit, int count)
{
    collapse(true);
    int moved = 0;
    if (document)
        first = last = movedBy(unit, first, count, moved);
    return moved;
}

void TextRange::collapse(bool toStart)
{
    if (toStart)
        last = first;
    else
        first = last;
}

bool TextRange::expand(TextUnit unit)
{
    if (!document)
        return false;
    const Position oldFirst = first;
    const Position oldLast = last;
    switch (unit) {
    case TextUnit::Textedit:
        first = {};
        last = document->end();
        break;
    case TextUnit::Character:
        if (isEmpty())
            moveEnd(unit, 1);
        break;
    case TextUnit::Word:
        first = WordStartAt(*document, first);
        last = WordEndAt(*document, last, isEmpty());
        break;
    }
    return first != oldFirst || last != oldLast;
}

void TextRange::moveToElementText(const DisplayElement& element)
{
    if (!document || !element.exists())
        return;
    first = element.contentStart();
    last = element.contentEnd();
}

void TextRange::moveToPoint(int x, int y)
{
    if (document && document->layout())
        first = last = document->valid(document->layout()->positionAt({x, y}));
}

void TextRange::select() const
{
    if (document)
        document->setSelection(first, last);
}

// ---------------------------------------------------------------- other ranges

void TextRange::setEndPoint(EndPoints how, const TextRange& other)
{
    if (!document || other.document != document)
        return;
    const Position target = IsOtherStart(how) ? other.first : other.last;
    if (IsOwnStart(how)) {
        first = target;
        last = std::max(first, last);
    } else {
        last = target;
        first = std::min(first, last);
    }
}

int TextRange::compareEndPoints(EndPoints how, const TextRange& other) const
{
    const Position own = IsOwnStart(how) ? first : last;
    const Position others = IsOtherStart(how) ? other.first : other.last;
    return own < others ? -1 : own > others ? 1 : 0;
}

bool TextRange::isEqual(const TextRange& other) const
{
    return document == other.document && first == other.first && last == other.last;
}

bool TextRange::inRange(const TextRange& other) const
{
    return document == other.document && first <= other.first && other.last <= last;
}

// ---------------------------------------------------------------- search

bool TextRange::findText(const QString& sought, int count, int flags)
{
    if (!document || sought.isEmpty())
        return false;
    const TextSearch search(sought, (flags & MatchCase) != 0, (flags & WholeWord) != 0,
                            (flags & NbspMarks) != 0);
    const auto hit = count < 0 ? search.findBackward(*document, last) : search.findForward(*document, first);
    if (!hit)
        return false;
    first = hit->first;
    last = hit->second;
    return true;
}

// ---------------------------------------------------------------- layout

std::vector<QRect> TextRange::getClientRects() const
{
    if (!document || !document->layout())
        return {};
    return document->layout()->clientRects(first, last);
}

QRect LayoutQuery::boundingRect(Position from, Position to)
{
    QRect bounds;
    for (const QRect& rect : clientRects(from, to)) {
        // Not `united`, which ignores the rectangles of empty ranges: their width is 0.
        if (bounds.isNull())
            bounds = rect;
        const int left = std::min(bounds.x(), rect.x());
        const int top = std::min(bounds.y(), rect.y());
        const int right = std::max(bounds.x() + bounds.width(), rect.x() + rect.width());
        const int bottom = std::max(bounds.y() + bounds.height(), rect.y() + rect.height());
        bounds = QRect(left, top, right - left, bottom - top);
    }
    return bounds;
}

QRect TextRange::boundingRect() const
{
    return document && document->layout() ? document->layout()->boundingRect(first, last) : QRect();
}

int TextRange::boundingLeft() const
{
    return boundingRect().x();
}

int TextRange::boundingTop() const
{
    return boundingRect().y();
}

int TextRange::boundingWidth() const
{
    if (!document || !document->layout())
        return isEmpty() ? 0 : 1;
    return boundingRect().width();
}

int TextRange::boundingHeight() const
{
    return boundingRect().height();
}

int TextRange::offsetLeft() const
{
    return boundingRect().x();
}

int TextRange::offsetTop() const
{
    return boundingRect().y();
}

void TextRange::scrollIntoView() const
{
    if (document && document->layout())
        document->layout()->scrollIntoView(first);
}

} // namespace vmk
