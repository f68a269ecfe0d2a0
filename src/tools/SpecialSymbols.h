#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <span>

/// Typographic characters to insert. Codes are those of the system's single-byte code page.
namespace vmk {

/// A pair of characters that goes around the selection.
struct WrappingSymbols
{
    const char* button; ///< the button's name, which is the kind of the insertion
    int left;
    int right;
    int blanks; ///< between the two on the button
    const char* name; ///< for the tool tip
};

struct SingleSymbol
{
    const char* button;
    int code;
    const char* name;
};

[[nodiscard]] std::span<const WrappingSymbols> WrappingSymbolTable();
[[nodiscard]] std::span<const SingleSymbol> SingleSymbolTable();

/// The character of a code.
[[nodiscard]] QString SymbolText(int code);

/// Puts the character of a code after the selection, which stays as it is.
void InsertSpecialCharacter(DisplayDocument& document, int code);

/// The kind that inserts characters by number.
inline constexpr char UserAsciiKind[] = "UserAscii";

/// Puts a pair around the selected text, or characters by number after the selection.
///
/// Lines that are selected in part or in whole come back as bare text: their painting is lost, which is
/// meant.
/// @param kind  the name of a wrapping button, or `UserAsciiKind`; others do nothing
/// @param extra the numbers for `UserAsciiKind`
void InsertSpecialSymbols(DisplayDocument& document, const QString& kind, const QString& extra);

/// The characters of decimal numbers that are separated by single blanks. The leading digits of a piece
/// count. Code 0, which an empty piece stands for too, has no character in a book and gives none; neither do
/// halves of a surrogate pair without the other and numbers beyond Unicode.
[[nodiscard]] QString TextOfNumbers(const QString& numbers);

} // namespace vmk
