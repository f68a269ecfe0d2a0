#pragma once

#include "LineStore.h"
#include "TagTable.h"

#include <QByteArray>
#include <QString>

#include <compare>
#include <cstdint>
#include <memory>
#include <vector>

/// The display document: the page that a book is edited in, without a window.
///
/// A document is a list of lines. A line is immutable: its block's start tag, its text, and the marks, that
/// is the in-line start and end tags at their places in the text. Every change, whoever asks for it,
/// computes new lines and hands them to the one mutation, `splice`. `splice` records the undo step (lines
/// before and after: two lists of pointers), carries the live ranges and the selection along, and tells the
/// listener which lines changed. Undo puts the old pointers back.
///
/// Places are counted in UTF-16 units of a line's text; between two lines lies a line break, which counts
/// as one character. No place ever lies inside a surrogate pair. A line's marks are always properly nested
/// and closed within the line, so that a line means the same wherever it stands.
///
/// What needs a layout (rectangles, points) is asked through `LayoutQuery`, which the view implements.
namespace vmk {

class TextRange;
class DisplayElement;
class LayoutQuery;
struct CommonEnds;

/// An in-line start or end tag in front of the character at `pos`.
struct Mark
{
    std::int32_t pos = 0; ///< Offset in the line's text, 0 to its length.
    std::uint32_t open : 1 = 0; ///< 1 for a start tag, 0 for an end tag.
    std::uint32_t tag : 31 = 0; ///< `TagId`; an end tag carries the number of its start tag.

    [[nodiscard]] static Mark opening(int pos, TagId tag) { return {pos, 1, tag & 0x7FFFFFFF}; }
    [[nodiscard]] static Mark closing(int pos, TagId tag) { return {pos, 0, tag & 0x7FFFFFFF}; }

    friend bool operator==(const Mark& a, const Mark& b)
    {
        return a.pos == b.pos && a.open == b.open && a.tag == b.tag;
    }
};

/// One line of the page: the block `<DIV …>` that holds it, its text, its in-line tags in order.
struct Line
{
    TagId block = NoTag; ///< `NoTag` only in a document without any content, on its one empty line.
    QString text; ///< Never holds CR or LF.
    std::vector<Mark> marks; ///< Ascending by `pos`, properly nested, all closed.

    friend bool operator==(const Line&, const Line&) = default;
};

/// A place between two characters: line from 0, offset in its text from 0 to its length.
struct Position
{
    int line = 0;
    int offset = 0;

    friend auto operator<=>(const Position&, const Position&) = default;
};

/// A place in a line between two marks, or between a mark and a character: in front of the character at
/// `offset` and of the mark with index `mark`, behind all earlier ones.
struct Cut
{
    int offset = 0;
    std::size_t mark = 0;
};

/// What is selected. The caret stands at `focus`; equal ends are a bare caret.
struct Selection
{
    Position anchor;
    Position focus;

    [[nodiscard]] bool isEmpty() const { return anchor == focus; }
    [[nodiscard]] Position start() const { return anchor < focus ? anchor : focus; }
    [[nodiscard]] Position end() const { return anchor < focus ? focus : anchor; }
    friend bool operator==(const Selection&, const Selection&) = default;
};

/// How an edit moves places: the text from `from` to `oldEnd` was replaced by one that ends at `newEnd`.
/// Places before `from`, and at it, stay; places behind `oldEnd`, and at it, move along; those between
/// fall to `from`.
struct EditMap
{
    Position from;
    Position oldEnd;
    Position newEnd;
    bool inFront = false; ///< Whole lines were put in front of `from`, whose place moves along with its line.

    [[nodiscard]] Position operator()(Position place) const;
    [[nodiscard]] EditMap inverse() const { return {from, newEnd, oldEnd, false}; }
};

/// The view's ear at the document. Calls come after the fact, in the order of the changes; a listener must
/// not change the document from within.
class DisplayListener
{
public:
    /// The lines `removed`, from line `first` on, gave way to `inserted` in the same place.
    virtual void linesChanged(int first, const std::vector<LinePtr>& removed,
                              const std::vector<LinePtr>& inserted)
        = 0;
    /// The selection or the caret stands elsewhere; also called after an edit that carried it along.
    virtual void selectionChanged() = 0;
    /// Another page was loaded: head, body tag and all lines are new.
    virtual void documentReset() = 0;

protected:
    ~DisplayListener() = default;
};

class DisplayDocument
{
public:
    /// An empty page: one empty line without a block.
    DisplayDocument();
    ~DisplayDocument();
    DisplayDocument(const DisplayDocument&) = delete;
    DisplayDocument& operator=(const DisplayDocument&) = delete;

    // ---- pages

    /// Takes over a page, from the bytes of its file (UTF-8, or UTF-16 with a byte order mark). Any bytes
    /// do; text is never dropped. Undo, redo and selection start afresh; live ranges go to the start.
    void loadPage(const QByteArray& html);
    /// The whole page as a browser saves it, in UTF-8: head and body tag as loaded, lines in canonical form.
    [[nodiscard]] QByteArray savePage() const;
    /// What a saved page begins with: all up to its first line.
    [[nodiscard]] QByteArray pageFront() const;
    /// All of the page in front of its body's start tag, as loaded: style rules stand here.
    [[nodiscard]] const QString& head() const { return pageHead; }
    /// The body's start tag; a bare `BODY` when the page has none.
    [[nodiscard]] TagId bodyTag() const { return pageBody; }

    // ---- lines

    [[nodiscard]] int lineCount() const { return lines.size(); }
    /// @param index 0 to `lineCount() - 1`.
    [[nodiscard]] const Line& line(int index) const { return *lines[index]; }
    [[nodiscard]] const LinePtr& linePtr(int index) const { return lines[index]; }
    [[nodiscard]] TagTable& tags() { return tagTable; }
    [[nodiscard]] const TagTable& tags() const { return tagTable; }
    [[nodiscard]] Position end() const;
    /// The nearest place that exists: inside the document, not inside a surrogate pair.
    [[nodiscard]] Position valid(Position place) const;
    /// How many characters stand in front of a place, a line break counting as one.
    [[nodiscard]] qint64 characterIndex(Position place) const;
    /// The place with that many characters in front of it; too small or large goes to the start or the end.
    [[nodiscard]] Position positionAt(qint64 characterIndex) const;

    // ---- selection

    [[nodiscard]] const Selection& selection() const { return currentSelection; }
    /// Moves caret and selection; places that do not exist go to the nearest one. Ends a typing run.
    void setSelection(Position anchor, Position focus);

    // ---- editing by key, at the selection; each call is one undo step, but for a run of typing

    /// Puts typed text in the selection's place, within the in-line elements around it. Calls in a row are
    /// one undo step until the caret is moved or something else is done.
    void typeText(const QString& text);
    /// Enter: splits the line; both halves have its block tag, an `id` stays with the first.
    void insertLineBreak();
    /// Backspace: the selection, else the character or line break in front of the caret.
    void deleteBackward();
    /// Delete: the selection, else the character or line break behind the caret.
    void deleteForward();
    /// Takes the selected text out as `deleteRange` does; nothing happens at a bare caret.
    void deleteSelection();

    // ---- editing anywhere; each call is one undo step

    /// Replaces text. CrLf, CR and LF in the new text are line breaks; new lines take the block tag of the
    /// line that they split. Elements around all of the old text go on around the new one.
    /// @return the place behind the new text.
    Position replaceText(Position from, Position to, const QString& text);
    /// Takes text out, with the in-line elements that it leaves empty. Several whole lines go as lines.
    /// @return the place where the text was.
    Position deleteRange(Position from, Position to);
    /// Puts HTML in the place of a range. Text outside blocks joins what stands beside the range. Blocks
    /// become lines of their own; but when the range reaches over a line break, its ends were parts of
    /// lines, and the first and last block join what is left of these: a range's own HTML put in its place
    /// gives the same text again (an in-line element that the range cuts is two elements then).
    /// @return the place behind what was put in.
    Position replaceHtml(Position from, Position to, QStringView html);
    /// The same between two cuts of one line, for what is addressed by its tags: an in-line element.
    Position replaceHtml(int line, Cut from, Cut to, QStringView html);
    /// Puts the lines of some HTML between two lines.
    /// @param line they go in front of this line, 0 to `lineCount()`; the one empty line of an empty
    ///     document gives way to them.
    void insertLines(int line, QStringView html);
    /// Replaces lines by those of some HTML; empty HTML takes the lines out.
    void replaceLines(int first, int count, QStringView html);
    /// Puts an element around the text between two places, line by line.
    void wrapRange(Position from, Position to, TagId tag);
    /// Gives a line another block tag.
    void setBlock(int line, TagId block);

    // ---- undo

    /// Takes the last step back and restores the selection in front of it. @return false when there is none.
    bool undo();
    /// Does the step taken back last again. @return false when there is none.
    bool redo();
    [[nodiscard]] bool canUndo() const { return undoSteps > 0; }
    [[nodiscard]] bool canRedo() const { return undoSteps < steps.size(); }

    // ---- the one mutation

    /// Replaces lines and does all that hangs on it: undo step, live ranges, selection, listener.
    /// @param first line from 0.
    /// @param removed how many lines go, 0 and up.
    /// @param inserted the lines that take their place; an empty document keeps one empty line.
    /// @param map how places move, in document positions before and after.
    /// Lines whose block is `NoTag` become `DIV` lines, and so do rules (`HR`) with content.
    void splice(int first, int removed, std::vector<LinePtr> inserted, const EditMap& map);

    /// Splices made while one of these lives are one undo step.
    class EditGroup
    {
    public:
        explicit EditGroup(DisplayDocument& groupedDocument);
        ~EditGroup();
        EditGroup(const EditGroup&) = delete;
        EditGroup& operator=(const EditGroup&) = delete;

    private:
        DisplayDocument& document;
    };

    /// One listener at a time; null for none. Not owned.
    void setListener(DisplayListener* newListener) { listener = newListener; }
    /// The laid-out page behind ranges and elements; null while no view shows the document. Not owned.
    void setLayout(LayoutQuery* newLayout) { pageLayout = newLayout; }
    [[nodiscard]] LayoutQuery* layout() const { return pageLayout; }

private:
    /// Lines `first`…, before and after one splice.
    struct Change
    {
        int first;
        std::vector<LinePtr> before;
        std::vector<LinePtr> after;
        EditMap map;
        /// What very long lines share on both sides and so do not hold; null while the lines are whole.
        std::unique_ptr<const CommonEnds> sharedEnds;
    };
    struct UndoStep
    {
        std::vector<Change> changes;
        Selection selectionBefore;
        Selection selectionAfter;
        bool typing = false; ///< A run of typing that the next typed character may join.
    };

    friend class TextRange;

    void reset(std::vector<LinePtr> newLines);
    Position replaceContent(Position from, Position to, const std::vector<Line>& content,
                            bool dropEmptyElements);
    Position replaceBlocks(int line, Cut from, Cut to, std::vector<Line> content, bool openEnded);
    void spliceMade(Position from, Position to, std::vector<Line> made, Position newEnd);
    [[nodiscard]] TagId blockWithoutId(TagId block);
    void makeFit(LinePtr& line);
    void mergeTyping();
    static void makeSmall(Change& change);
    void apply(const Change& change, bool forward);
    void knowLineStarts(int count) const;
    void exchange(int first, const std::vector<LinePtr>& removed, const std::vector<LinePtr>& inserted,
                  const EditMap& map);
    void endTypingRun();

    TagTable tagTable;
    LineStore lines;
    QString pageHead;
    TagId pageBody = NoTag;
    Selection currentSelection;
    DisplayListener* listener = nullptr;
    LayoutQuery* pageLayout = nullptr;
    std::vector<UndoStep> steps;
    std::size_t undoSteps = 0; ///< Steps that are done; those behind can be redone.
    std::vector<TextRange*> liveRanges;
    mutable std::vector<qint64> lineStarts; ///< Character index of each line's start, as far as known.
    mutable int knownLineStarts = 0;
    int groupDepth = 0;
    bool stepOpen = false; ///< The group running has its undo step already.
};

} // namespace vmk
