#pragma once

#include "BookSeams.h"
#include "MissingCharacters.h"
#include "TreeLines.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Converts the page of the display back to XML text and to the bytes of a book.
namespace vmk {

/// Returns the XML text that a page shows: the text after the head, without mark-up, with real angle
/// brackets, from the XML declaration on if there is one. Line breaks that the display inserts into long
/// lines are removed; line ends between lines remain. `NbspMarker` becomes U+00A0, `&nbsp;` becomes a blank.
[[nodiscard]] std::string TextOfPage(std::string_view page, AngleMarks marks);

/// Returns the XML text of the open book without its binary part, for the parser.
/// \param realCharacters  true: in UTF-8; false: in the code page in which the book was read
[[nodiscard]] std::string GetFbTextFromDisplay(bool realCharacters);

/// The line breaks of a saved book.
enum class LayoutStyle
{
    Compact, ///< the whole book on one line
    LineEnds, ///< one element per line
    TagsTree ///< one element per line, indented by tabs
};

/// The layout and encoding of a book file.
struct SaveLayout
{
    LayoutStyle style = LayoutStyle::TagsTree;
    std::string declaration;
    int32_t codePage = 0;
    InLineTagSet inLineTags;
    /// Inserted before each "</FictionBook>", or at the end of a text without one.
    std::string_view binaryPart;
    /// The code page of `binaryPart`.
    int32_t binaryCodePage = 0;
    /// Lines, values and quoted tags are unchanged, as far as the style allows it.
    bool keepsText = false;
};

/// The result of writing a book to bytes.
struct BookFile
{
    std::string bytes;
    /// The text is not well-formed, so that it has the layout `LineEnds` instead of `TagsTree`.
    bool treeSkipped = false;
    /// The decision about characters that the requested encoding lacks; `Substitute` if it lacks none. After
    /// `Cancel` there are no bytes.
    MissingAnswer missing = MissingAnswer::Substitute;
};

/// Returns the file of a book from its text, whose angle brackets are restored. Characters that the code page
/// does not contain are substituted.
[[nodiscard]] BookFile FileOfText(std::string text, const SaveLayout& layout);

} // namespace vmk
