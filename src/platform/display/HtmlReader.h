#pragma once

#include "DisplayDocument.h"

#include <QByteArray>
#include <QStringView>

#include <vector>

/// HTML in: from a page's bytes or a pasted text to lines.
///
/// Tolerant by construction: whatever stands between tags becomes text, a `<` that begins no tag is a
/// character, and nothing is ever an error. Blocks are flattened: each line carries the start tag of the
/// innermost block around it (and that block's, or an outer one's, `align`); in-line elements that reach
/// over several blocks are closed and opened again in each line.
namespace vmk {

struct HtmlContent
{
    /// Text outside any block stands in lines whose block is `NoTag`.
    std::vector<LinePtr> lines;
    /// The last line is text outside any block, and nothing ended it: what follows the content joins it.
    bool openEnded = false;
    /// Pages only: all that stands in front of the body's start tag, as written.
    QString head;
    /// Pages only: the body's start tag, `NoTag` when there is none.
    TagId body = NoTag;
};

/// Reads a whole page. White space collapses as a browser does it, also at the ends of a line.
/// @param html UTF-8, or UTF-16 with a byte order mark; malformed bytes become U+FFFD.
[[nodiscard]] HtmlContent readPage(TagTable& tags, const QByteArray& html);

/// Reads a piece of HTML that is put into a page. White space that holds a line end collapses, other white
/// space is kept as it stands: it may be text that was typed.
[[nodiscard]] HtmlContent readFragment(TagTable& tags, QStringView html);

} // namespace vmk
