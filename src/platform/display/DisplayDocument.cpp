#include "DisplayDocument.h"

#include "Cancelling.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"
#include "InLineRun.h"
#include "LineEdit.h"
#include "TextRange.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <new>
#include <utility>

namespace vmk {

namespace {

/// The text split at CrLf, CR and LF; each piece is a line without marks.
std::vector<LinePtr> PiecesOf(const QString& text, TagId block)
{
    std::vector<LinePtr> pieces;
    qsizetype from = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\r' && text[i] != u'\n')
            continue;
        pieces.push_back(MakeLine({block, text.mid(from, i - from), {}}));
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
        from = i + 1;
    }
    pieces.push_back(MakeLine({block, text.mid(from), {}}));
    return pieces;
}

bool HasContent(const Line& line)
{
    return !line.text.isEmpty() || !line.marks.empty();
}

LinePtr WithBlock(const Line& line, TagId block)
{
    return MakeLine({block, line.text, line.marks});
}

/// The end of content that was inserted at a position.
Position EndOfContent(Position from, const std::vector<LinePtr>& content)
{
    const int lineBreaks = int(content.size()) - 1;
    const int length = int(content.back()->text.size());
    return {from.line + lineBreaks, lineBreaks == 0 ? from.offset + length : length};
}

Cut StartCut(const TagTable& tags, const Line& line, Position from, Position to)
{
    return from == to ? InsertionCut(tags, line, from.offset) : RangeStartCut(line, from.offset);
}

Cut EndCut(const TagTable& tags, const Line& line, Position from, Position to)
{
    return from == to ? InsertionCut(tags, line, to.offset) : RangeEndCut(line, to.offset);
}

/// A piece that could not be added, before the rest of its source.
class ReturnedPiece final : public LineSource
{
public:
    [[nodiscard]] std::vector<LinePtr> next() override
    {
        return piece.empty() ? source->next() : std::exchange(piece, {});
    }
    [[nodiscard]] bool isReady() override { return !piece.empty() || source->isReady(); }

    std::vector<LinePtr> piece;
    std::unique_ptr<LineSource> source;
};

} // namespace

Position EditMap::operator()(Position place) const
{
    if (place < from || (place == from && !inFront))
        return place;
    if (place < oldEnd)
        return from;
    if (place.line > oldEnd.line)
        return {place.line - oldEnd.line + newEnd.line, place.offset};
    return {newEnd.line, place.offset - oldEnd.offset + newEnd.offset};
}

// ---------------------------------------------------------------- groups

DisplayDocument::EditGroup::EditGroup(DisplayDocument& groupedDocument)
    : document(groupedDocument)
{
    document.history.openGroup();
}

DisplayDocument::EditGroup::~EditGroup()
{
    document.history.closeGroup(document.currentSelection);
}

// ---------------------------------------------------------------- the document

DisplayDocument::DisplayDocument()
{
    reset({});
}

DisplayDocument::~DisplayDocument()
{
    for (TextRange* range : liveRanges)
        range->document = nullptr;
}

// ---------------------------------------------------------------- pages

void DisplayDocument::loadPage(const QByteArray& html)
{
    HtmlContent content = ReadPage(tagTable, html);
    pageHead = content.head;
    pageBody = content.body == NoTag ? tagTable.intern(u"BODY", {}) : content.body;
    const TagId div = tagTable.intern(u"DIV", {});
    for (LinePtr& line : content.lines) {
        if (line->block == NoTag)
            line = WithBlock(*line, div);
    }
    reset(std::move(content.lines));
}

void DisplayDocument::loadLines(const QByteArray& front, std::unique_ptr<LineSource> source)
{
    const HtmlContent content = ReadPage(tagTable, front);
    pageHead = content.head;
    pageBody = content.body == NoTag ? tagTable.intern(u"BODY", {}) : content.body;
    std::vector<LinePtr> first = source->next();
    reset(std::move(first));
    rest = std::move(source);
}

bool DisplayDocument::loadMore()
{
    if (!rest || isLoading)
        return false;
    // If memory runs out, the piece is not lost: it is the next one of the source again.
    auto returned = std::make_unique<ReturnedPiece>();
    std::vector<LinePtr> piece = rest->next();
    if (piece.empty()) {
        rest.reset();
        return false;
    }
    const int first = lines.size();
    try {
        lines.append(piece);
    } catch (const std::bad_alloc&) {
        returned->piece = std::move(piece);
        returned->source = std::move(rest);
        rest = std::move(returned);
        throw;
    }
    const QScopedValueRollback<bool> loading(isLoading, true);
    notify([&](DisplayListener& observer) { observer.linesLoaded(first, piece); });
    return true;
}

/// To a caller a page is the same before and after: its rest is loaded when it is needed.
void DisplayDocument::loadAll() const
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    while (const_cast<DisplayDocument*>(this)->loadMore()) { }
}

QByteArray DisplayDocument::pageFront() const
{
    const QByteArray head = pageHead.isEmpty() ? QByteArrayLiteral("<HTML>") : pageHead.toUtf8();
    const QString body = pageBody == NoTag ? QStringLiteral("<BODY>") : tagTable[pageBody].startTag();
    return head + body.toUtf8() + "\r\n";
}

QByteArray DisplayDocument::savePage() const
{
    constexpr qsizetype TypicalLine = 200;
    QByteArray page;
    page.reserve(pageHead.size() + lineCount() * TypicalLine);
    page += pageFront();
    QString html;
    for (int i = 0; i < lineCount(); ++i) {
        if (line(i).block == NoTag)
            continue;
        html.resize(0);
        WriteLine(html, tagTable, line(i), Blanks::Protected);
        html += u"\r\n";
        page += html.toUtf8();
    }
    page += "</BODY></HTML>";
    return page;
}

void DisplayDocument::reset(std::vector<LinePtr> newLines)
{
    if (newLines.empty())
        newLines.push_back(MakeLine({}));
    rest.reset();
    lines.assign(std::move(newLines));
    ++revision;
    knownLineStarts = 0;
    history.clear();
    currentSelection = {};
    for (TextRange* range : liveRanges)
        range->first = range->last = {};
    notify([](DisplayListener& observer) { observer.documentReset(); });
}

Position DisplayDocument::end() const
{
    const int last = lineCount() - 1;
    return {last, int(line(last).text.size())};
}

Position DisplayDocument::valid(Position place) const
{
    if (place.line < 0)
        return {};
    if (!hasLine(place.line))
        return end();
    const QString& text = line(place.line).text;
    place.offset = std::clamp(place.offset, 0, int(text.size()));
    const bool insidePair = place.offset > 0 && place.offset < text.size()
        && text[place.offset].isLowSurrogate() && text[place.offset - 1].isHighSurrogate();
    if (insidePair)
        --place.offset;
    return place;
}

void DisplayDocument::knowLineStarts(int count) const
{
    if (count <= knownLineStarts)
        return;
    lineStarts.resize(std::max(lineStarts.size(), std::size_t(lines.size())));
    for (int i = knownLineStarts; i < count; ++i)
        lineStarts[std::size_t(i)]
            = i == 0 ? 0 : lineStarts[std::size_t(i) - 1] + line(i - 1).text.size() + 1;
    knownLineStarts = count;
}

qint64 DisplayDocument::characterIndex(Position place) const
{
    place = valid(place);
    knowLineStarts(place.line + 1);
    return lineStarts[std::size_t(place.line)] + place.offset;
}

Position DisplayDocument::positionAt(qint64 characterIndex) const
{
    if (characterIndex <= 0)
        return {};
    // Only up to the position: the line starts after it remain unknown until they are needed.
    constexpr int Stride = 256;
    while (knownLineStarts == 0
           || (hasLine(knownLineStarts) && lineStarts[std::size_t(knownLineStarts) - 1] <= characterIndex))
        knowLineStarts(std::min(knownLineStarts + Stride, lines.size()));
    const auto begin = lineStarts.begin();
    const auto next = std::upper_bound(begin, begin + knownLineStarts, characterIndex);
    const auto index = int(next - begin) - 1;
    const qint64 offset = characterIndex - lineStarts[std::size_t(index)];
    return valid({index, int(std::min<qint64>(offset, line(index).text.size()))});
}

void DisplayDocument::setSelection(Position anchor, Position focus)
{
    const Selection wanted{valid(anchor), valid(focus)};
    if (!history.isInGroup())
        history.endTypingRun();
    if (wanted == currentSelection)
        return;
    currentSelection = wanted;
    notify([](DisplayListener& observer) { observer.selectionChanged(); });
}

// ---------------------------------------------------------------- splice, undo, redo

void DisplayDocument::splice(int first, int removed, std::vector<LinePtr> inserted, const EditMap& map)
{
    const EditGroup group(*this);
    if (inserted.empty() && areAllLines(removed))
        inserted.push_back(MakeLine({}));
    const bool isBare = inserted.size() == 1 && !HasContent(*inserted[0]) && areAllLines(removed);
    if (!isBare) {
        for (LinePtr& line : inserted)
            makeFit(line);
    }

    std::vector<LinePtr> before;
    before.reserve(std::size_t(removed));
    for (int i = 0; i < removed; ++i)
        before.push_back(lines[first + i]);
    // If memory runs out, it does so before the step exists.
    lines.reserve(inserted.size());
    const LineChange& made
        = history.record({first, std::move(before), std::move(inserted), map, nullptr}, currentSelection);
    exchange(first, made.before, made.after, map);
}

/// Applies a change again, or reverts it.
void DisplayDocument::apply(const LineChange& change, bool forward)
{
    const auto& from = forward ? change.before : change.after;
    const auto& to = forward ? change.after : change.before;
    const EditMap map = forward ? change.map : change.map.inverse();
    if (!change.sharedEnds)
        return exchange(change.first, from, to, map);
    std::vector<LinePtr> present;
    present.reserve(from.size());
    for (int i = 0; i < int(from.size()); ++i)
        present.push_back(lines[change.first + i]);
    exchange(change.first, present, WithEnds(to, *change.sharedEnds, *present.front(), *present.back()), map);
}

/// Makes a line read back as itself: with a block, a rule only without content, no tag nested too deep.
void DisplayDocument::makeFit(LinePtr& line)
{
    const bool isWrongBlock
        = line->block == NoTag || (tagTable[line->block].name == u"HR" && HasContent(*line));
    if (isWrongBlock)
        line = WithBlock(*line, tagTable.intern(u"DIV", {}));
    if (IsTooDeep(*line))
        line = MakeLine(WithinDepth(*line));
}

void DisplayDocument::exchange(int first, const std::vector<LinePtr>& removed,
                               const std::vector<LinePtr>& inserted, const EditMap& map)
{
    lines.replace(first, int(removed.size()), inserted);
    ++revision;
    knownLineStarts = std::min({knownLineStarts, first + 1, lines.size()});
    // Positions before the edit are unchanged; all others may have to be adjusted to the new lines.
    const auto carried = [&](Position place) { return place < map.from ? place : valid(map(place)); };
    for (TextRange* range : liveRanges) {
        range->first = carried(range->first);
        range->last = carried(range->last);
    }
    const Selection moved{carried(currentSelection.anchor), carried(currentSelection.focus)};
    const bool selectionMoved = moved != currentSelection;
    currentSelection = moved;
    notify([&](DisplayListener& observer) {
        observer.linesChanged(first, removed, inserted);
        if (selectionMoved)
            observer.selectionChanged();
    });
}

// ---------------------------------------------------------------- editing anywhere

/// The block tag for a line split from another: an identifier remains with the first.
TagId DisplayDocument::blockWithoutId(TagId block)
{
    return tagTable[block].id.isEmpty() ? block : tagTable.withAttribute(block, u"id", QString());
}

Position DisplayDocument::replaceContent(Position from, Position to, std::vector<LinePtr> content,
                                         bool dropEmptyElements)
{
    const LinePtr first = lines[from.line];
    const LinePtr last = lines[to.line];
    const Position newEnd = EndOfContent(from, content);
    // A line that moves up to the start of an emptied one keeps its block, but not the identifier.
    const bool movesUp
        = from.line != to.line && from.offset == 0 && content.size() == 1 && !HasContent(*content[0]);
    std::vector<LinePtr> made = ReplaceLineContent(
        *first, StartCut(tagTable, *first, from, to), *last, EndCut(tagTable, *last, from, to),
        std::move(content), blockWithoutId(first->block),
        dropEmptyElements ? EmptyElements::Remove : EmptyElements::Keep);
    if (movesUp) {
        const QString& id = tagTable[first->block].id;
        made[0] = WithBlock(*made[0],
                            tagTable[last->block].id == id
                                ? last->block
                                : tagTable.withAttribute(last->block, u"id", id.isEmpty() ? QString() : id));
    }
    splice(from.line, to.line - from.line + 1, std::move(made), {from, to, newEnd});
    return newEnd;
}

Position DisplayDocument::replaceText(Position from, Position to, const QString& text)
{
    if (from == to && text.isEmpty())
        return from;
    return replaceContent(from, to, PiecesOf(text, blockWithoutId(lines[from.line]->block)), false);
}

Position DisplayDocument::deleteRange(Position from, Position to)
{
    if (from == to)
        return from;
    const bool wholeLines = from.line < to.line && from.offset == 0 && to.offset == line(to.line).text.size();
    if (!wholeLines)
        return replaceContent(from, to, {MakeLine({})}, true);
    splice(from.line, to.line - from.line + 1, {}, {from, {to.line + 1, 0}, from});
    return valid(from);
}

/// Reads HTML that will be inserted. Looking for a key may run other code: if that changes the lines, the
/// positions of the insertion are no longer valid, and it is cancelled too.
HtmlContent DisplayDocument::readFragment(QStringView html)
{
    const unsigned before = revision;
    HtmlContent content = ReadFragment(tagTable, html);
    if (revision != before) {
        CancellableWork::cancel();
        content = {};
        content.cancelled = true;
    }
    return content;
}

Position DisplayDocument::replaceHtml(Position from, Position to, QStringView html)
{
    if (from.line == to.line) {
        const Line& line = *lines[from.line];
        return replaceHtml(from.line, StartCut(tagTable, line, from, to), EndCut(tagTable, line, from, to),
                           html);
    }
    HtmlContent read = readFragment(html);
    if (read.cancelled)
        return from;
    if (read.lines.empty())
        read.lines.push_back(MakeLine({}));

    const TagId firstBlock = read.lines[0]->block;
    const EditGroup group(*this);
    const Position end = replaceContent(from, to, std::move(read.lines), false);
    if (from.offset == 0 && firstBlock != NoTag)
        setBlock(from.line, firstBlock);
    return end;
}

Position DisplayDocument::replaceHtml(int line, Cut from, Cut to, QStringView html)
{
    HtmlContent read = readFragment(html);
    if (read.cancelled)
        return {line, from.offset};
    if (!read.lines.empty())
        return replaceBlocks(line, from, to, std::move(read.lines), read.openEnded);
    if (from.offset == to.offset && from.mark == to.mark)
        return {line, from.offset};
    return replaceBlocks(line, from, to, {MakeLine({})}, true);
}

/// Inserts content into one line: text outside blocks is joined to the text next to it, blocks become
/// separate lines. No empty line remains where the rest of the line is empty.
Position DisplayDocument::replaceBlocks(int line, Cut from, Cut to, std::vector<LinePtr> content,
                                        bool openEnded)
{
    const bool isSeparateWord = content.front()->block != NoTag;
    if (isSeparateWord)
        content.insert(content.begin(), MakeLine({}));
    if (!openEnded)
        content.push_back(MakeLine({}));

    const LinePtr old = lines[line];
    const Position start{line, from.offset};
    Position end = EndOfContent(start, content);
    std::vector<LinePtr> made = ReplaceLineContent(*old, from, *old, to, std::move(content),
                                                   blockWithoutId(old->block), EmptyElements::Keep);
    const bool restIsEmpty = !openEnded && made.size() > 1 && !HasContent(*made.back());
    if (restIsEmpty) {
        made.pop_back();
        end = {end.line - 1, int(made.back()->text.size())};
    }
    if (isSeparateWord && made.size() > 1 && !HasContent(*made.front())) {
        made.erase(made.begin());
        --end.line;
        // The rest is the complete old line, moved down: it keeps its identifier.
        if (!openEnded && !restIsEmpty)
            made.back() = WithBlock(*made.back(), old->block);
    }
    splice(line, 1, std::move(made), {start, {line, to.offset}, end});
    return end;
}

void DisplayDocument::insertLines(int line, QStringView html)
{
    line = std::clamp(line, 0, lineCount());
    const bool isBare = areAllLines(1) && lines[0]->block == NoTag;
    replaceLines(isBare ? 0 : line, isBare ? 1 : 0, html);
}

void DisplayDocument::replaceLines(int first, int count, QStringView html)
{
    HtmlContent read = readFragment(html);
    std::vector<LinePtr> made = std::move(read.lines);
    if (read.cancelled || (count == 0 && made.empty()))
        return;
    const auto inserted = int(made.size());
    // Positions in the replaced lines move to their start; those after them move with their lines.
    splice(first, count, std::move(made),
           {{first, 0}, {first + count, 0}, {first + inserted, 0}, count == 0});
}

void DisplayDocument::wrapRange(Position from, Position to, TagId tag)
{
    std::vector<LinePtr> made;
    for (int i = from.line; i <= to.line; ++i) {
        const Line& old = line(i);
        const int begin = i == from.line ? from.offset : 0;
        const int end = i == to.line ? to.offset : int(old.text.size());
        made.push_back(begin < end ? MakeLine(WrapContent(old, begin, end, tag)) : lines[i]);
    }
    splice(from.line, to.line - from.line + 1, std::move(made), {from, from, from});
}

void DisplayDocument::setBlock(int line, TagId block)
{
    const Position start{line, 0};
    splice(line, 1, {WithBlock(*lines[line], block)}, {start, start, start});
}

// ---------------------------------------------------------------- editing by key

void DisplayDocument::typeText(const QString& text)
{
    if (text.isEmpty())
        return;
    const bool joins = currentSelection.isEmpty() && history.mayJoinTyping();
    const EditGroup group(*this);
    if (joins)
        history.reopenLastStep();
    const Position caret = replaceText(currentSelection.start(), currentSelection.end(), text);
    setSelection(caret, caret);
    history.noteTyping(joins);
}

void DisplayDocument::insertLineBreak()
{
    const EditGroup group(*this);
    const Position caret
        = replaceText(currentSelection.start(), currentSelection.end(), QStringLiteral("\n"));
    setSelection(caret, caret);
}

void DisplayDocument::deleteBackward()
{
    if (!currentSelection.isEmpty())
        return eraseSelection();
    const Position to = currentSelection.focus;
    if (to == Position())
        return;
    const Position from = to.offset > 0 ? valid({to.line, to.offset - 1})
                                        : Position{to.line - 1, int(line(to.line - 1).text.size())};
    const EditGroup group(*this);
    const Position caret = replaceContent(from, to, {MakeLine({})}, true);
    setSelection(caret, caret);
}

void DisplayDocument::deleteForward()
{
    if (!currentSelection.isEmpty())
        return eraseSelection();
    const Position from = currentSelection.focus;
    const QString& text = line(from.line).text;
    if (from.offset == text.size() && !hasLine(from.line + 1))
        return;
    const bool isPair = from.offset + 1 < text.size() && text[from.offset].isHighSurrogate()
        && text[from.offset + 1].isLowSurrogate();
    const Position to = from.offset == text.size() ? Position{from.line + 1, 0}
                                                   : Position{from.line, from.offset + (isPair ? 2 : 1)};
    const EditGroup group(*this);
    const Position caret = replaceContent(from, to, {MakeLine({})}, true);
    setSelection(caret, caret);
}

void DisplayDocument::deleteSelection()
{
    if (currentSelection.isEmpty())
        return;
    const EditGroup group(*this);
    const Position caret = deleteRange(currentSelection.start(), currentSelection.end());
    setSelection(caret, caret);
}

void DisplayDocument::eraseSelection()
{
    const EditGroup group(*this);
    const TagId block = lines[0]->block;
    deleteSelection();
    if (areAllLines(1) && lines[0]->block == NoTag && block != NoTag)
        setBlock(0, block);
}

// ---------------------------------------------------------------- undo and redo

bool DisplayDocument::undo(int count)
{
    if (!canUndo())
        return false;
    Selection selection;
    while (count > 0 && canUndo())
        selection = undoSome(count);
    history.endTypingRun();
    setSelection(selection.anchor, selection.focus);
    return true;
}

bool DisplayDocument::redo(int count)
{
    if (!canRedo())
        return false;
    Selection selection;
    while (count > 0 && canRedo())
        selection = redoSome(count);
    history.endTypingRun();
    setSelection(selection.anchor, selection.focus);
    return true;
}

/// Reverts one step, or as much as is wanted of a run. \return the selection before it
Selection DisplayDocument::undoSome(int& count)
{
    const UndoHistory::Step& step = *history.lastDone();
    if (!step.run) {
        (void)history.stepBack();
        --count;
        // NOLINTNEXTLINE(modernize-loop-convert): clang 14 cannot read views::reverse of this library.
        for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
            apply(*change, false);
        return step.selectionBefore;
    }
    const std::size_t taken = std::min(step.run->done(), std::size_t(count));
    count -= int(taken);
    moveRun(*step.run, step.run->done() - taken);
    if (step.run->done() == 0)
        (void)history.stepBack();
    return step.run->carried(step.selectionBefore);
}

/// Repeats one step, or as much as is wanted of a run. \return the selection after it
Selection DisplayDocument::redoSome(int& count)
{
    const UndoHistory::Step& step = *history.firstUndone();
    const bool isUnderWay = step.run && step.run->done() > 0;
    if (!isUnderWay)
        (void)history.stepForward();
    if (!step.run) {
        --count;
        for (const LineChange& change : step.changes)
            apply(change, true);
        return step.selectionAfter;
    }
    const std::size_t taken = std::min(step.run->size() - step.run->done(), std::size_t(count));
    count -= int(taken);
    moveRun(*step.run, step.run->done() + taken);
    return step.run->carried(step.selectionBefore);
}

} // namespace vmk
