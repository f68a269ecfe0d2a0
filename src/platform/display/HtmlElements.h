#pragma once

#include <QStringView>

#include <cstddef>

/// The meaning of HTML elements for the display.
namespace vmk {

/// The treatment of an element by the reader.
enum class ElementKind : unsigned char
{
    Inline, ///< Stored as a pair of marks.
    Void, ///< In-line, without content: `IMG`.
    Block, ///< Begins a line; without content it is an empty line.
    Container, ///< Contains blocks. Its direct text begins a line; without content it is not a line.
    Break, ///< `BR`.
    Rule, ///< `HR`: a line without text.
    Dropped, ///< `SCRIPT`, `STYLE`, `TITLE`: removed with the content.
    Head,
    Body,
    Ignored, ///< `HTML`, `META`, `LINK`: only the tag is removed.
};

/// The maximum nesting of in-line elements within a line. Deeper elements are ignored at reading and at
/// editing.
inline constexpr std::size_t MaxInlineDepth = 256;

/// \param name  in upper case. Unknown names are `Inline`.
[[nodiscard]] ElementKind KindOfElement(QStringView name);

/// Returns true if the start tag of the block `opening` ends the block `open` around it: a `P` ends at the
/// next block, an `LI` at the next `LI`.
[[nodiscard]] bool EndsImplicitly(QStringView open, QStringView opening);

} // namespace vmk
