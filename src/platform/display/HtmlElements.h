#pragma once

#include <QStringView>

#include <cstddef>

/// What the elements of HTML are to the display.
namespace vmk {

enum class ElementKind : unsigned char
{
    Inline, ///< Kept as a pair of marks.
    Void, ///< In-line, without content: `IMG`.
    Block, ///< Begins a line; without content it is an empty line.
    Container, ///< Holds blocks; text of its own begins a line, but it is no line when empty.
    Break, ///< `BR`.
    Rule, ///< `HR`: a line without text.
    Dropped, ///< `SCRIPT`, `STYLE`, `TITLE`: goes with its content.
    Head,
    Body,
    Ignored, ///< `HTML`, `META`, `LINK`: only the tag goes.
};

/// How deep in-line elements nest within a line; deeper ones do not count, neither read nor put in by an
/// edit.
inline constexpr std::size_t MaxInlineDepth = 256;

/// @param name in capitals. Unknown names are `Inline`.
[[nodiscard]] ElementKind elementKind(QStringView name);

/// True when the start tag of the block `opening` ends a block `open` that still stands open around it:
/// a `P` ends at the next block, an `LI` at the next `LI`.
[[nodiscard]] bool endsImplicitly(QStringView open, QStringView opening);

} // namespace vmk
