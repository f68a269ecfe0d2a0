#pragma once

#include "DisplayDocument.h"

#include <QRect>
#include <QString>

#include <vector>

namespace vmk {

class DisplayElement;

/// A piece of a document's text, with the operations that the editing logic asks of a text range. Ranges
/// are live: every edit carries them along. A copy is a range of its own (`duplicate`). A range whose
/// document is gone answers as an empty one and changes nothing.
///
/// Units of movement: "character" (a line break is one; a place inside a surrogate pair is passed over),
/// "word" (letters and digits, or other signs, with the blanks behind them; a line break is one), and
/// "textedit" (the whole document). `how` of the end points: "StartToStart", "StartToEnd" (this range's
/// start, the other's end), "EndToStart", "EndToEnd". Names are taken in any case; unknown ones do nothing.
class TextRange
{
public:
    /// A range over nothing; it belongs to no document.
    TextRange() = default;
    /// The ends may come in any order.
    TextRange(DisplayDocument& ofDocument, Position from, Position to);
    TextRange(const TextRange& other);
    TextRange& operator=(const TextRange& other);
    ~TextRange();

    [[nodiscard]] bool isNull() const { return document == nullptr; }
    [[nodiscard]] DisplayDocument* ofDocument() const { return document; }
    [[nodiscard]] Position start() const { return first; }
    [[nodiscard]] Position end() const { return last; }
    [[nodiscard]] bool isEmpty() const { return first == last; }

    // ---- text and HTML

    /// The text, with CrLf for each line break.
    [[nodiscard]] QString text() const;
    /// Replaces the text; the elements around all of the range stay around the new text, which takes CrLf,
    /// CR and LF as line breaks. The range becomes the empty place behind it.
    void setText(const QString& text);
    /// The HTML: within one line its in-line HTML, without the elements that reach over both ends; over
    /// several lines each in its block tag, CrLf between them. Nothing for an empty range. Long lines are
    /// not wrapped.
    [[nodiscard]] QString htmlText() const;
    /// Replaces the range by HTML, as `DisplayDocument::replaceHtml`; it becomes the place behind it.
    void pasteHTML(const QString& html);
    /// "BackColor" and "ForeColor" put a FONT element with that colour around the text.
    /// @return false for other commands and for an empty range.
    bool execCommand(QStringView command, bool showInterface, const QString& value);
    /// True when an in-line element of that name (any case) is open around the whole range; a bare place
    /// counts as inside an element that begins or ends there.
    [[nodiscard]] bool touchesElement(QStringView name) const;

    // ---- movement

    /// Move one end; an end that would pass the other takes it along.
    /// @param count units, negative towards the start of the document.
    /// @return how many units it moved, negative for backwards. In characters a surrogate pair is two.
    int moveStart(QStringView unit, int count = 1);
    int moveEnd(QStringView unit, int count = 1);
    /// Collapses to the start, then moves that place.
    int move(QStringView unit, int count = 1);
    void collapse(bool toStart = true);
    /// Grows to whole units: "character" (an empty range takes the next one), "word", "textedit".
    /// @return true if the range changed.
    bool expand(QStringView unit);
    /// Covers an element's content; a line without its line break.
    void moveToElementText(const DisplayElement& element);
    /// Becomes the place nearest to a client point; needs a view.
    void moveToPoint(int x, int y);
    /// Makes the range the document's selection, the caret at its end.
    void select() const;

    // ---- other ranges

    [[nodiscard]] TextRange duplicate() const { return *this; }
    void setEndPoint(QStringView how, const TextRange& other);
    /// -1, 0 or 1: this range's point lies before, at or behind the other's.
    [[nodiscard]] int compareEndPoints(QStringView how, const TextRange& other) const;
    [[nodiscard]] bool isEqual(const TextRange& other) const;
    /// True when the other range lies within this one.
    [[nodiscard]] bool inRange(const TextRange& other) const;

    // ---- search

    static constexpr int WholeWord = 2;
    static constexpr int MatchCase = 4;

    /// Looks for text and becomes the hit; otherwise the range stays as it is. CrLf, CR or LF in the sought
    /// text match a line break.
    /// @param count 0 and up: forwards, the first hit from the range's start to the document's end;
    ///     negative: backwards, the last hit between the document's start and the range's end.
    /// @param flags `WholeWord`, `MatchCase`, added together.
    bool findText(const QString& sought, int count = 1, int flags = 0);

    // ---- layout; without a view all of it is nothing

    /// One rectangle for each line box, client coordinates, top down.
    [[nodiscard]] std::vector<QRect> getClientRects() const;
    [[nodiscard]] int boundingLeft() const;
    [[nodiscard]] int boundingTop() const;
    /// Without a view an empty range is 0 wide and any other 1, so that "is something selected" can be told.
    [[nodiscard]] int boundingWidth() const;
    [[nodiscard]] int boundingHeight() const;
    /// Client coordinates too, so that they can be handed to `moveToPoint`.
    [[nodiscard]] int offsetLeft() const;
    [[nodiscard]] int offsetTop() const;
    void scrollIntoView() const;

private:
    friend class DisplayDocument;

    void attach(DisplayDocument* newDocument);
    [[nodiscard]] QRect boundingRect() const;
    [[nodiscard]] Position movedBy(QStringView unit, Position place, int count, int& moved) const;

    DisplayDocument* document = nullptr;
    std::size_t registration = 0; ///< Place in the document's list of live ranges.
    Position first;
    Position last;
};

} // namespace vmk
