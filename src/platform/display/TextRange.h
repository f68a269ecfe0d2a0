#pragma once

#include "DisplayDocument.h"
#include "TextNames.h"

#include <QRect>
#include <QString>

#include <vector>

namespace vmk {

class DisplayElement;

/// A piece of a document's text with the operations of a text range. Ranges are live: every edit moves them.
/// A copy is a separate range (`duplicate`). A range whose document is deleted behaves like an empty range
/// and changes nothing.
///
/// Units of movement and end points (this range's, then the other's) are in `TextNames.h`; a literal name
/// such as `u"character"` is accepted too.
class TextRange
{
public:
    /// An empty range without a document.
    TextRange() = default;
    /// The ends may be in any order.
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
    /// Replaces the text. Elements around all of the range continue around the new text. CrLf, CR and LF in
    /// it are line breaks. The range becomes the empty position after it.
    void setText(const QString& text);
    /// The HTML: within one line its in-line HTML, without the elements that extend over both ends; over
    /// several lines each in its block tag, with CrLf between them. Empty for an empty range. Long lines are
    /// not wrapped.
    [[nodiscard]] QString htmlText() const;
    /// Replaces the range by HTML, like `DisplayDocument::replaceHtml`; the range becomes the position after
    /// it.
    void pasteHTML(const QString& html);
    /// "BackColor" and "ForeColor" put a FONT element with that colour around the text.
    /// \return false for other commands and for an empty range
    bool execCommand(QStringView command, bool showInterface, const QString& value);
    /// Returns true if an in-line element with that name (in any case) is open around the whole range. An
    /// empty range is inside an element that begins or ends at its position.
    [[nodiscard]] bool touchesElement(QStringView name) const;

    // ---- movement

    /// Moves one end; if it passes the other end, that moves with it.
    /// \param count  the number of units, negative towards the start of the document
    /// \return the number of units moved, negative for backwards. In characters, a surrogate pair counts as
    ///         two.
    int moveStart(TextUnit unit, int count = 1);
    int moveEnd(TextUnit unit, int count = 1);
    /// Collapses to the start, then moves that position.
    int move(TextUnit unit, int count = 1);
    void collapse(bool toStart = true);
    /// Extends to whole units; an empty range takes the next character.
    /// \return true if the range changed
    bool expand(TextUnit unit);
    /// Moves to the content of an element; for a line, without its line break.
    void moveToElementText(const DisplayElement& element);
    /// Moves to the position nearest to a client point. Requires a view.
    void moveToPoint(int x, int y);
    /// Selects the range in the document, with the caret at its end.
    void select() const;

    // ---- other ranges

    [[nodiscard]] TextRange duplicate() const { return *this; }
    void setEndPoint(EndPoints how, const TextRange& other);
    /// Returns -1, 0 or 1 if this range's point is before, at or after the other's.
    [[nodiscard]] int compareEndPoints(EndPoints how, const TextRange& other) const;
    [[nodiscard]] bool isEqual(const TextRange& other) const;
    /// Returns true if the other range is within this one.
    [[nodiscard]] bool inRange(const TextRange& other) const;

    // ---- the same by name

    int moveStart(TextUnitName name, int count = 1) { return moveStart(name.unit, count); }
    int moveEnd(TextUnitName name, int count = 1) { return moveEnd(name.unit, count); }
    int move(TextUnitName name, int count = 1) { return move(name.unit, count); }
    bool expand(TextUnitName name) { return expand(name.unit); }
    void setEndPoint(EndPointsName name, const TextRange& other) { setEndPoint(name.ends, other); }
    [[nodiscard]] int compareEndPoints(EndPointsName name, const TextRange& other) const
    {
        return compareEndPoints(name.ends, other);
    }

    // ---- search

    static constexpr int WholeWord = 2;
    static constexpr int MatchCase = 4;
    /// A non-breaking space in the sought text matches its visible mark in the display too.
    static constexpr int NbspMarks = 8;

    /// Searches for text and becomes the match; otherwise the range is unchanged. CrLf, CR or LF in the
    /// sought text matches a line break.
    /// \param count  from 0: forwards, the first match from the range's start to the document's end;
    ///               negative: backwards, the last match between the document's start and the range's end
    /// \param flags  `WholeWord`, `MatchCase` and `NbspMarks`, added
    bool findText(const QString& sought, int count = 1, int flags = 0);

    // ---- layout; without a view the results are empty

    /// One rectangle per line box in client coordinates, from top to bottom.
    [[nodiscard]] std::vector<QRect> getClientRects() const;
    [[nodiscard]] int boundingLeft() const;
    [[nodiscard]] int boundingTop() const;
    /// Without a view, 0 for an empty range and 1 for any other, so that callers can test for a selection.
    [[nodiscard]] int boundingWidth() const;
    [[nodiscard]] int boundingHeight() const;
    /// In client coordinates too, so that they can be passed to `moveToPoint`.
    [[nodiscard]] int offsetLeft() const;
    [[nodiscard]] int offsetTop() const;
    void scrollIntoView() const;

private:
    friend class DisplayDocument;

    void attach(DisplayDocument* newDocument);
    [[nodiscard]] QRect boundingRect() const;
    [[nodiscard]] Position movedBy(TextUnit unit, Position place, int count, int& moved) const;

    DisplayDocument* document = nullptr;
    std::size_t registration = 0; ///< The index in the document's list of live ranges.
    Position first;
    Position last;
};

} // namespace vmk
