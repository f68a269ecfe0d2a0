#pragma once

#include <QString>

namespace vmk {

/// Replaces each `uni(...)` in a text by the characters with these codes: `uni(1055)`, or several as
/// `uni(1055,1056)`.
///
/// A code from 128 to 191 is a byte of the system's ANSI code page; any other code is the Unicode character
/// with that number. A part without a number, or whose number is not that of a character, is kept as text. A
/// text without "uni(" in lower case is unchanged, and so is a text that would become empty.
void ParseUniCodes(QString& text);

} // namespace vmk
