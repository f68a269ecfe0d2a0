#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <vector>

namespace vmk {

/// An element of the page as the editing logic addresses it: a line's block, or an in-line element that was
/// found by its identifier. Good until the document changes; a line's element then stands for whatever line
/// has its place, and one whose place is gone changes nothing but for `insertAdjacentHTML`, which goes to
/// the end of the document.
class DisplayElement
{
public:
    /// Stands for no element.
    DisplayElement() = default;
    /// The block of a line, from 0.
    DisplayElement(DisplayDocument& ofDocument, int ofLine);
    /// An in-line element: the start tag that is a line's mark.
    DisplayElement(DisplayDocument& ofDocument, int ofLine, std::size_t ofMark);

    [[nodiscard]] bool exists() const;
    /// From 0.
    [[nodiscard]] int line() const { return lineIndex; }
    /// The node index: the line's ordinal from 1, for an in-line element that of its line; -1 for none.
    [[nodiscard]] int sourceIndex() const { return exists() ? lineIndex + 1 : -1; }
    /// The tag's name in capitals.
    [[nodiscard]] QString nodeName() const;
    [[nodiscard]] QString id() const;
    void setId(const QString& id);
    [[nodiscard]] QString className() const;
    /// The value of an attribute; null when the element does not have it.
    [[nodiscard]] QString getAttribute(QStringView name) const;
    /// The left margin of a line's style, in pixels; 0 when it has none.
    [[nodiscard]] int marginLeft() const;
    /// Sets the style's left margin in pixels, the rest of the style stays.
    void setMarginLeft(int pixels);
    /// The text within, without mark-up.
    [[nodiscard]] QString innerText() const;
    [[nodiscard]] QString outerHTML() const;
    /// Replaces the element by HTML; "" removes it. A line that goes leaves its place to the next one.
    void setOuterHTML(const QString& html);
    /// @param where "beforeBegin" or "afterEnd", in any case; others do nothing.
    void insertAdjacentHTML(QStringView where, const QString& html);
    /// Needs a view.
    void scrollIntoView() const;

    /// The text of the element as a pair of places.
    [[nodiscard]] Position contentStart() const;
    [[nodiscard]] Position contentEnd() const;

private:
    static constexpr std::size_t NoMark = std::size_t(-1);

    [[nodiscard]] bool isInline() const { return markIndex != NoMark; }
    [[nodiscard]] std::size_t closingMark() const;
    [[nodiscard]] TagId tag() const;
    void setTag(TagId newTag);

    DisplayDocument* document = nullptr;
    int lineIndex = -1;
    std::size_t markIndex = NoMark;
};

} // namespace vmk
