#pragma once

#include <QString>

namespace vmk {

/// Expands each `uni(...)` in a text to the characters that it names by number: `uni(1055)`, or several as
/// `uni(1055,1056)`.
///
/// A code from 128 to 191 is a byte of the system's ANSI code page; any other code is the Unicode character
/// of that number. A part without a number, or with one that is no character's, stays as text. A text without
/// "uni(" in small letters stays as it is, and so does one of which nothing would be left.
void ParseUniCodes(QString& text);

} // namespace vmk
