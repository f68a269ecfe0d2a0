#pragma once

#include "DisplayLines.h"
#include "LineStore.h"
#include "UndoHistory.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// The display document: the page in which a book is edited, without a window.
///
/// A document is a list of lines. A line is immutable. It consists of the start tag of its block, its text,
/// and its marks: the in-line start and end tags at their positions in the text. Every change computes new
/// lines and passes them to the only mutation, `splice`. `splice` records the undo step (the lines before and
/// after, as two lists of pointers), moves the live ranges and the selection, and notifies the listener of
/// the changed lines. Undo restores the old pointers.
///
/// Positions are counted in UTF-16 units of a line's text. Between two lines is a line break, which counts as
/// one character. No position is inside a surrogate pair. The marks of a line are always properly nested and
/// closed within the line, so that the meaning of a line does not depend on the lines around it.
///
/// Inserting HTML can be cancelled while it is read (`CancellableWork`); the document is then unchanged.
///
/// Queries that need a layout (rectangles, points) use `LayoutQuery`, which the view implements.
namespace vmk {

class TextRange;
class DisplayElement;
class LayoutQuery;
struct HtmlContent;

/// Observes the changes of a document. Called after each change, in the order of the changes. A listener must
/// not change the document during a call.
class DisplayListener
{
public:
    /// Lines were read from the page that is being loaded, and added after all others. The text has not
    /// changed: it has become visible.
    virtual void linesLoaded(int first, const std::vector<LinePtr>& loaded)
    {
        linesChanged(first, {}, loaded);
    }
    /// The lines `removed`, from line `first` on, were replaced by `inserted`.
    virtual void linesChanged(int first, const std::vector<LinePtr>& removed,
                              const std::vector<LinePtr>& inserted)
        = 0;
    /// The selection or the caret has moved; also called after an edit that moved it.
    virtual void selectionChanged() = 0;
    /// A new page was loaded: head, body tag and all lines are new.
    virtual void documentReset() = 0;

protected:
    ~DisplayListener() = default;
};

/// The lines of a page that is loaded piece by piece.
class LineSource
{
public:
    LineSource() = default;
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;
    virtual ~LineSource() = default;

    /// Returns the next lines; none at the end.
    [[nodiscard]] virtual std::vector<LinePtr> next() = 0;
    /// Returns whether `next` returns at once.
    [[nodiscard]] virtual bool isReady() = 0;
};

/// The document: lines, selection, undo. See the beginning of this file.
class DisplayDocument
{
public:
    /// Creates an empty page: one empty line without a block.
    DisplayDocument();
    ~DisplayDocument();
    DisplayDocument(const DisplayDocument&) = delete;
    DisplayDocument& operator=(const DisplayDocument&) = delete;

    // ---- pages

    /// Loads a page from the bytes of its file (UTF-8, or UTF-16 with a byte order mark). Any bytes are
    /// accepted; text is never lost. Clears undo, redo and selection, and moves live ranges to the start.
    void loadPage(const QByteArray& html);
    /// Loads a page whose lines come from a source. The first piece is loaded at once, the others by
    /// `loadMore`, or when a caller asks for all lines (`lineCount` and everything that depends on it): no
    /// operation works with a part of a page. Otherwise as above.
    /// \param front  the page without its lines
    void loadLines(const QByteArray& front, std::unique_ptr<LineSource> source);
    /// Loads the next piece. Returns false if all lines are loaded.
    bool loadMore();
    /// Returns whether `loadMore` has work that it does at once.
    [[nodiscard]] bool isMoreReady() const { return rest && rest->isReady(); }
    /// Returns whether all lines are loaded.
    [[nodiscard]] bool isComplete() const { return !rest; }
    /// Returns the whole page as a browser saves it, in UTF-8: head and body tag as loaded, lines in
    /// canonical form.
    [[nodiscard]] QByteArray savePage() const;
    /// Returns the beginning of a saved page, up to its first line.
    [[nodiscard]] QByteArray pageFront() const;
    /// The part of the page before the start tag of its body, as loaded. It contains the style rules.
    [[nodiscard]] const QString& head() const { return pageHead; }
    /// The start tag of the body; a plain `BODY` if the page has none.
    [[nodiscard]] TagId bodyTag() const { return pageBody; }

    // ---- lines

    /// The number of lines. Loads all of them first.
    [[nodiscard]] int lineCount() const
    {
        if (rest)
            loadAll();
        return lines.size();
    }
    /// The number of lines that are loaded, for the view.
    [[nodiscard]] int loadedLineCount() const { return lines.size(); }
    /// Returns whether a line with this index exists. Loads all lines only if it is not loaded yet.
    [[nodiscard]] bool hasLine(int index) const { return index < lines.size() || index < lineCount(); }
    /// \param index  0 to `lineCount() - 1`
    [[nodiscard]] const Line& line(int index) const { return *lines[index]; }
    [[nodiscard]] const LinePtr& linePtr(int index) const { return lines[index]; }
    [[nodiscard]] TagTable& tags() { return tagTable; }
    [[nodiscard]] const TagTable& tags() const { return tagTable; }
    [[nodiscard]] Position end() const;
    /// Returns the nearest valid position: inside the document, not inside a surrogate pair.
    [[nodiscard]] Position valid(Position place) const;
    /// Returns the number of characters before a position; a line break counts as one.
    [[nodiscard]] qint64 characterIndex(Position place) const;
    /// Returns the position after that many characters; the start or the end if the number is too small or
    /// large.
    [[nodiscard]] Position positionAt(qint64 characterIndex) const;

    // ---- selection

    [[nodiscard]] const Selection& selection() const { return currentSelection; }
    /// Moves caret and selection; invalid positions are moved to the nearest valid one. Ends a typing run.
    void setSelection(Position anchor, Position focus);

    // ---- editing by key, at the selection; each call is one undo step, except in a run of typing

    /// Replaces the selection by typed text, within the in-line elements around it. Consecutive calls are one
    /// undo step until the caret is moved or another operation follows.
    void typeText(const QString& text);
    /// Enter: splits the line. Both halves have its block tag; an `id` remains with the first.
    void insertLineBreak();
    /// Backspace: deletes the selection, otherwise the character or line break before the caret.
    void deleteBackward();
    /// Delete: deletes the selection, otherwise the character or line break after the caret.
    void deleteForward();
    /// Deletes the selected text as `deleteRange` does. Without a selection, does nothing.
    void deleteSelection();
    /// The same for a deletion by the user: of the whole page one line without text stays, so that something
    /// can be pasted at the caret.
    void eraseSelection();

    // ---- editing anywhere; each call is one undo step

    /// Replaces text. CrLf, CR and LF in the new text are line breaks; new lines take the block tag of the
    /// line that they split. Elements around all of the old text continue around the new text.
    /// \return the position after the new text
    Position replaceText(Position from, Position to, const QString& text);
    /// Deletes text, and the in-line elements that become empty. Several whole lines are deleted as lines.
    /// \return the position of the deleted text
    Position deleteRange(Position from, Position to);
    /// Replaces a range by HTML. Text outside blocks is joined to the text next to the range. Blocks become
    /// separate lines, with one exception: if the range contains a line break, its ends were parts of lines,
    /// and the first and last block are joined to the rest of these lines. Replacing a range by its own HTML
    /// therefore keeps the text (an in-line element that the range cuts becomes two elements).
    /// \return the position after the inserted content
    Position replaceHtml(Position from, Position to, QStringView html);
    /// The same between two cuts of one line; for content addressed by its tags, such as an in-line element.
    Position replaceHtml(int line, Cut from, Cut to, QStringView html);
    /// Inserts the lines of a piece of HTML.
    /// \param line  the lines are inserted before this line, 0 to `lineCount()`; they replace the one empty
    ///              line of an empty document
    void insertLines(int line, QStringView html);
    /// Replaces lines by those of a piece of HTML; empty HTML removes the lines.
    void replaceLines(int first, int count, QStringView html);
    /// Puts an element around the text between two positions, line by line.
    void wrapRange(Position from, Position to, TagId tag);
    /// Sets the block tag of a line.
    void setBlock(int line, TagId block);

    /// Replaces texts within lines, from the start of the document to its end. Each replacement and each mark
    /// is one undo step. The cost of a line does not depend on the number of its replacements.
    void replaceInLines(std::vector<InLineStep> replacements);

    // ---- undo

    /// Reverts the last steps and restores the selection before them. Returns false if there are none.
    /// \param count  how many steps, from 1; fewer are reverted if there are not as many
    bool undo(int count = 1);
    /// Repeats the last reverted steps. Returns false if there are none.
    bool redo(int count = 1);
    [[nodiscard]] bool canUndo() const { return history.canUndo(); }
    [[nodiscard]] bool canRedo() const { return history.canRedo(); }
    /// The number of steps that can be undone.
    [[nodiscard]] std::size_t undoSteps() const { return history.undoSteps(); }
    /// Makes the present text the one that no undo goes back before. Must not be called within an
    /// `EditGroup`.
    void forgetUndo() { history.clear(); }

    // ---- the one mutation

    /// Replaces lines and updates the undo step, the live ranges, the selection and the listener.
    /// \param first     the first line, from 0
    /// \param removed   the number of removed lines, from 0
    /// \param inserted  the new lines; an empty document keeps one empty line
    /// \param map       maps positions before the change to positions after it
    ///
    /// Lines with the block `NoTag` become `DIV` lines, and so do rules (`HR`) with content.
    void splice(int first, int removed, std::vector<LinePtr> inserted, const EditMap& map);

    /// All splices during the lifetime of a group are one undo step.
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

    /// At most one listener; null for none. Not owned.
    void setListener(DisplayListener* newListener) { listener = newListener; }
    /// At most one more listener, which is called first: the recorder of the changes. Not owned.
    void setRecorder(DisplayListener* newRecorder) { recorder = newRecorder; }
    /// The laid-out page for ranges and elements; null while no view shows the document. Not owned.
    void setLayout(LayoutQuery* newLayout) { pageLayout = newLayout; }
    [[nodiscard]] LayoutQuery* layout() const { return pageLayout; }

private:
    friend class TextRange;

    template <typename Call>
    void notify(Call call) const
    {
        if (recorder)
            call(*recorder);
        if (listener)
            call(*listener);
    }
    void reset(std::vector<LinePtr> newLines);
    [[nodiscard]] HtmlContent readFragment(QStringView html);
    void loadAll() const;
    [[nodiscard]] bool areAllLines(int count) const { return !hasLine(count); }
    Position replaceContent(Position from, Position to, std::vector<LinePtr> content, bool dropEmptyElements);
    Position replaceBlocks(int line, Cut from, Cut to, std::vector<LinePtr> content, bool openEnded);
    [[nodiscard]] TagId blockWithoutId(TagId block);
    void makeFit(LinePtr& line);
    void apply(const LineChange& change, bool forward);
    void knowLineStarts(int count) const;
    void exchange(int first, const std::vector<LinePtr>& removed, const std::vector<LinePtr>& inserted,
                  const EditMap& map);
    void replaceOneByOne(const std::vector<InLineStep>& replacements);
    void moveRun(InLineRun& run, std::size_t done);
    [[nodiscard]] Selection undoSome(int& count);
    [[nodiscard]] Selection redoSome(int& count);

    TagTable tagTable;
    LineStore lines;
    unsigned revision = 0; ///< Different after each change of the lines.
    std::unique_ptr<LineSource> rest; ///< of the page that is being loaded
    bool isLoading = false; ///< a piece is being added
    QString pageHead;
    TagId pageBody = NoTag;
    Selection currentSelection;
    DisplayListener* listener = nullptr;
    DisplayListener* recorder = nullptr;
    LayoutQuery* pageLayout = nullptr;
    UndoHistory history;
    std::vector<TextRange*> liveRanges;
    mutable std::vector<qint64> lineStarts; ///< The character index of each line's start, as far as known.
    mutable int knownLineStarts = 0;
};

} // namespace vmk
