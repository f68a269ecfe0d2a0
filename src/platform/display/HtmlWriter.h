#pragma once

#include "DisplayDocument.h"

#include <QString>

/// Writes HTML in canonical form: `<DIV …>`, marks as originally written, `&lt;` `&gt;` `&amp;` escaped,
/// U+00A0 as `&nbsp;`. `ReadFragment` returns the same lines for it.
namespace vmk {

/// The form of runs of blanks, and of blanks at the ends of a line.
enum class Blanks
{
    AsTheyStand, ///< For pieces that `ReadFragment` reads, which keeps blanks.
    Protected, ///< For pages: each blank that a browser would remove becomes `&nbsp;`.
};

/// Appends text with its special characters escaped.
void WriteText(QString& html, QStringView text);

/// Appends the content of a line, without the line's block tag.
void WriteContent(QString& html, const TagTable& tags, const Line& line, Blanks blanks = Blanks::AsTheyStand);

/// Appends a whole line with its block tag.
void WriteLine(QString& html, const TagTable& tags, const Line& line, Blanks blanks = Blanks::AsTheyStand);

} // namespace vmk
