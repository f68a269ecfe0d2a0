#pragma once

#include "DisplayDocument.h"

#include <QByteArray>
#include <QStringView>

#include <string_view>
#include <vector>

/// Reads HTML: from the bytes of a page or a pasted text to lines.
///
/// Every input is accepted: all text between tags is kept, a `<` that begins no tag is a character, and there
/// are no errors. Blocks are flattened: each line has the start tag of the innermost block around it (and the
/// `align` of that block or of an outer one). In-line elements that extend over several blocks are closed and
/// reopened in each line.
namespace vmk {

/// The result of reading HTML.
struct HtmlContent
{
    /// Text outside any block becomes lines whose block is `NoTag`.
    std::vector<LinePtr> lines;
    /// The last line is text outside any block and is not terminated: content that follows is joined to it.
    bool openEnded = false;
    /// Only for fragments: Escape was pressed meanwhile, and there are no lines; see `CancellableWork`.
    bool cancelled = false;
    /// Only for pages: the part before the start tag of the body, as written.
    QString head;
    /// Only for pages: the start tag of the body; `NoTag` if there is none.
    TagId body = NoTag;
};

/// Reads a whole page. White space collapses as in a browser, also at the ends of a line.
/// \param html  UTF-8, or UTF-16 with a byte order mark; malformed bytes become U+FFFD
[[nodiscard]] HtmlContent ReadPage(TagTable& tags, const QByteArray& html);

/// Reads a piece of HTML to be inserted into a page. White space that contains a line end collapses. Other
/// white space is kept unchanged, because it may be typed text.
[[nodiscard]] HtmlContent ReadFragment(TagTable& tags, QStringView html);
/// The same for UTF-8, which takes half of the memory.
[[nodiscard]] HtmlContent ReadFragment(TagTable& tags, std::string_view utf8);

} // namespace vmk
