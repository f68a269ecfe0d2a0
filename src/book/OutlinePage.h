#pragma once

#include "BookOutline.h"
#include "DisplayLines.h"
#include "DisplayValues.h"
#include "TagPaint.h"

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Writes the lines of an outline: as a page of HTML, or as the lines of a document. Both are those that the
/// parser's reading of the book makes (`PageWithTree`, `ReadPage`).
namespace vmk {

/// The text of a book in common form and its outline.
struct OutlinedText
{
    OutlinedText() = default;
    OutlinedText(std::string bookText, std::string firstLine, BookOutline bookOutline)
        : text(std::move(bookText))
        , declaration(std::move(firstLine))
        , outline(std::move(bookOutline))
    {
    }

    std::string text;
    std::string declaration; ///< the first line
    BookOutline outline;

    /// The number of lines of the display.
    [[nodiscard]] std::size_t lineCount() const { return outline.lines.size() + 1; }
    /// The piece of the text of a line; the declaration for the first one.
    /// \param index  0 to `lineCount() - 1`
    [[nodiscard]] std::string_view line(std::size_t index) const;
    /// The position of that piece in the text, in bytes; 0 for the declaration.
    [[nodiscard]] std::size_t position(std::size_t index) const;
    /// The number of elements around a line.
    [[nodiscard]] std::size_t depth(std::size_t index) const;

    /// The readers of a text that is shown in a window.
    enum class Reader
    {
        Lines, ///< of the document
        PageFile
    };
    /// Notes that a reader does not need the lines before `line` any more. The memory of the text that
    /// neither reader needs is released. May be called by several threads.
    void passed(Reader reader, std::size_t line);

private:
    std::mutex guard; ///< for the members below
    std::array<std::size_t, 2> passedBytes{}; ///< by reader
    std::size_t released = 0;
};

/// Makes the lines of a page, one `DIV` each.
class OutlineDivs
{
public:
    OutlineDivs(const OutlinedText& outlined, const DisplayValues& values);

    /// Appends the lines from `first` to before `last` to a page.
    void append(std::size_t first, std::size_t last, std::string& page) const;

private:
    const OutlinedText& book;
    TagPaint paint;
    bool showNbsp;
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
    OutlineLines(std::shared_ptr<OutlinedText> outlined, const DisplayValues& values, TagTable& tags);

    [[nodiscard]] std::size_t count() const { return book->lineCount(); }
    /// Returns the lines from `first` to before `last`. May be called by several threads at a time.
    [[nodiscard]] std::vector<LinePtr> make(std::size_t first, std::size_t last) const;
    /// Notes that the lines before this one are not made again.
    void passed(std::size_t line) const { book->passed(OutlinedText::Reader::Lines, line); }

private:
    std::shared_ptr<OutlinedText> book;
    bool showNbsp;
    std::vector<TagId> blocks; ///< by depth
    TagId firstBlock = NoTag;
    TagId tagMark = NoTag; ///< around the tags of the book; `NoTag` if they are not painted
    TagId nameMark = NoTag;
    TagId valueMark = NoTag;
    TagId commentMark = NoTag;
    bool paintsAttributes = false;
};

} // namespace vmk
