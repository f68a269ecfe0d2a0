#pragma once

#include "BookOutline.h"
#include "DisplayLines.h"
#include "DisplayValues.h"
#include "TagPaint.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Writes the lines of an outline: as a page of HTML, or as the lines of a document. Both are those that the
/// parser's reading of the book makes (`PageWithTree`, `ReadPage`).
namespace vmk {

/// The text of a book in common form and its outline.
struct OutlinedText
{
    std::string text;
    std::string declaration; ///< the first line
    BookOutline outline;

    /// The number of lines of the display.
    [[nodiscard]] std::size_t lineCount() const { return outline.lines.size() + 1; }
    /// The piece of the text of a line; the declaration for the first one.
    /// \param index  0 to `lineCount() - 1`
    [[nodiscard]] std::string_view line(std::size_t index) const;
    /// The number of elements around a line.
    [[nodiscard]] std::size_t depth(std::size_t index) const;
};

/// Makes the lines of a page, one `DIV` each.
class OutlineDivs
{
public:
    OutlineDivs(const OutlinedText& book, const DisplayValues& values);

    /// Appends the lines from `first` to before `last` to a page.
    void append(std::size_t first, std::size_t last, std::string& page) const;

private:
    const OutlinedText& book;
    TagPaint paint;
    std::vector<std::string> starts; ///< of lines, by depth
};

/// Returns the text as XML with one line for each line of the display, indented by tabs: the layout of
/// `XmlSerializer` with `keepTextOf`.
[[nodiscard]] std::string XmlOfOutline(const OutlinedText& book);

/// Makes the lines of a document. Independent of the document once it exists, so that another thread can make
/// lines.
class OutlineLines
{
public:
    /// \param tags  of the document; the tags of the lines are added
    OutlineLines(std::shared_ptr<const OutlinedText> book, const DisplayValues& values, TagTable& tags);

    [[nodiscard]] std::size_t count() const { return book->lineCount(); }
    /// Returns the lines from `first` to before `last`. May be called by several threads at a time.
    [[nodiscard]] std::vector<LinePtr> make(std::size_t first, std::size_t last) const;

private:
    std::shared_ptr<const OutlinedText> book;
    std::vector<TagId> blocks; ///< by depth
    TagId firstBlock = NoTag;
    TagId tagMark = NoTag; ///< around the tags of the book; `NoTag` if they are not painted
    TagId nameMark = NoTag;
    TagId valueMark = NoTag;
    TagId commentMark = NoTag;
    bool paintsAttributes = false;
};

} // namespace vmk
