#pragma once

#include "DisplayCharacters.h"
#include "TreeLines.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// The lines of the display of a book, as positions in the book's text: each line is a piece of the text
/// whose mark-up `OutlineLines` and `OutlinePage` write in the form of the display.
///
/// An outline exists only for a text in common form. In this form one pass over the bytes shows that the text
/// is well-formed and where its lines begin: UTF-8 with an XML declaration, elements with names in ASCII,
/// and no CDATA section, instruction, document type, or ">" in a value or comment. All other texts are
/// read by the parser (`KeptTreeOfBook`), with the same result.
struct BookOutline
{
    struct LineStart
    {
        std::uint64_t position : 40; ///< of the tag that begins the line, in bytes
        std::uint64_t depth : 24; ///< the number of elements around it
    };

    /// The lines after the one of the XML declaration, in order.
    std::vector<LineStart> lines;
    std::size_t end = 0; ///< of the last line, in bytes
    std::uint32_t deepest = 0; ///< the largest depth
    std::vector<std::string> inLineNames; ///< of elements in which a blank is text
    std::vector<std::string> wordNames; ///< of elements that may be parts of words
    /// The positions of the line ends between other elements that become a blank, in order.
    std::vector<std::uint64_t> blanks;
    // The changes that the editor's own rules would make; see `BookLosses`.
    std::size_t joinedWords = 0;
    std::size_t tornTexts = 0;
    std::size_t movedElements = 0;
    ProtectedCharacters characters;
};

/// Returns the outline of a text, or nothing if it is not in common form.
/// \param text   the whole text of a book, without its pictures
/// \param start  the position after the XML declaration
/// \param descriptionEnd  the position after the description, which has been updated: a later tag of a
///                        description is not in common form
[[nodiscard]] std::optional<BookOutline> OutlineOf(std::string_view text, std::size_t start,
                                                   std::size_t descriptionEnd, const InLineTagSet& inLineTags,
                                                   bool showNbsp);

} // namespace vmk
