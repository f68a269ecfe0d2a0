#pragma once

#include "DisplayDocument.h"

#include <QString>

/// HTML out, in canonical form: `<DIV …>`, marks as they were written, `&lt;` `&gt;` `&amp;` escaped, U+00A0
/// as `&nbsp;`. `readFragment` makes the same lines of it again.
namespace vmk {

/// How runs of blanks, and blanks at the ends of a line, are written.
enum class Blanks
{
    AsTheyStand, ///< For pieces that come back through `readFragment`, which keeps them.
    Protected, ///< For pages: each blank that a browser would swallow as `&nbsp;`.
};

/// Appends text with its special characters escaped.
void writeText(QString& html, QStringView text);

/// Appends what stands in a line, without the line's block tag.
void writeContent(QString& html, const TagTable& tags, const Line& line, Blanks blanks = Blanks::AsTheyStand);

/// Appends a whole line with its block tag.
void writeLine(QString& html, const TagTable& tags, const Line& line, Blanks blanks = Blanks::AsTheyStand);

} // namespace vmk
