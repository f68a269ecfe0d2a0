#pragma once

#include "DisplayDocument.h"
#include "TextNames.h"

#include <QString>

#include <vector>

namespace vmk {

/// An element of the page as the editing code addresses it: the block of a line, or an in-line element that
/// was found by its identifier. Valid until the document changes. After a change, a line's element refers to
/// the line that now has its index. If there is no such line, operations do nothing, except for
/// `insertAdjacentHTML`, which inserts at the end of the document.
class DisplayElement
{
public:
    /// Refers to no element.
    DisplayElement() = default;
    /// The block of a line, from 0.
    DisplayElement(DisplayDocument& ofDocument, int ofLine);
    /// An in-line element: the start tag at a mark of a line.
    DisplayElement(DisplayDocument& ofDocument, int ofLine, std::size_t ofMark);

    [[nodiscard]] bool exists() const;
    /// From 0.
    [[nodiscard]] int line() const { return lineIndex; }
    /// The node index: the number of the line from 1 (for an in-line element, of its line); -1 for no
    /// element.
    [[nodiscard]] int sourceIndex() const { return exists() ? lineIndex + 1 : -1; }
    /// The name of the tag in upper case.
    [[nodiscard]] QString nodeName() const;
    [[nodiscard]] QString id() const;
    void setId(const QString& id);
    [[nodiscard]] QString className() const;
    /// The value of an attribute; null if the element does not have it.
    [[nodiscard]] QString getAttribute(QStringView name) const;
    /// The left margin in the style of a line, in pixels; 0 if it has none.
    [[nodiscard]] int marginLeft() const;
    /// Sets the left margin in the style, in pixels; the rest of the style is unchanged.
    void setMarginLeft(int pixels);
    /// The text of the element, without mark-up.
    [[nodiscard]] QString innerText() const;
    [[nodiscard]] QString outerHTML() const;
    /// Replaces the element by HTML; "" removes it. The next line takes the index of a removed line.
    void setOuterHTML(const QString& html);
    void insertAdjacentHTML(Adjacent where, const QString& html);
    /// Requires a view.
    void scrollIntoView() const;

    /// The start and the end of the element's text.
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
