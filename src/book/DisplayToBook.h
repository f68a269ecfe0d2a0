#pragma once

#include "Seam.h"
#include "TreeLines.h"

#include <cstdint>
#include <string>
#include <string_view>

/// From the page of the display back to XML text and to the bytes of a book.
namespace vmk {

/// A page as the display writes it when nothing has been edited: with `CrLf` between its lines, whose tags
/// are whole.
[[nodiscard]] std::string PageAsDisplayed(std::string page);

/// Whether U+2039 and U+203A become `&lt;` and `&gt;` again. For validation they stay, so that the place of
/// an error is the same in the text and in the display.
enum class AngleMarks
{
    Keep,
    Restore
};

/// The XML text that a page shows: behind its head, without its mark-up, each visible angle bracket a real
/// one, from the XML declaration on if there is one. The display's wraps of long lines are undone,
/// `NbspMarker` becomes U+00A0, `&nbsp;` a blank; line ends between lines remain.
[[nodiscard]] std::string TextOfPage(std::string_view page, AngleMarks marks);

/// The text of the page that the display shows, as `TextOfPage` makes it. Empty without a window.
[[nodiscard]] Seam<std::string(AngleMarks marks)>& DisplayTextSeam();

/// The open book's XML text without its binary part, for the parser.
/// \param realCharacters  in UTF-8; otherwise in the code page that the book was read in
[[nodiscard]] std::string GetFbTextFromDisplay(bool realCharacters);

enum class LayoutStyle
{
    Compact, ///< the whole book on one line
    LineEnds, ///< one element per line
    TagsTree ///< one element per line, indented by tabs
};

/// How a book is to be written.
struct SaveLayout
{
    LayoutStyle style = LayoutStyle::TagsTree;
    std::string declaration;
    int32_t codePage = 0;
    InLineTagSet inLineTags;
    /// Put back before each "</FictionBook>", or at the end of a text without one.
    std::string_view binaryPart;
    /// The one that `binaryPart` came in.
    int32_t binaryCodePage = 0;
};

struct BookFile
{
    std::string bytes;
    /// The text is not well-formed: laid out as `LineEnds` instead of `TagsTree`.
    bool treeSkipped = false;
};

/// The file of a book, from its text with angle marks restored. Characters that the code page lacks are
/// substituted.
[[nodiscard]] BookFile FileOfText(std::string text, const SaveLayout& layout);
/// The file of the book that a page shows.
[[nodiscard]] BookFile FileOfPage(std::string page, const SaveLayout& layout);

} // namespace vmk
