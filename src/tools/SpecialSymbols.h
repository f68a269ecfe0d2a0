#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <span>

/// Typographic characters for insertion. Codes are those of the system's single-byte code page.
namespace vmk {

/// A pair of characters for insertion around the selection.
struct WrappingSymbols
{
    const char* button; ///< The name of the button; also the kind of the insertion.
    int left;
    int right;
    int blanks; ///< The number of blanks between both characters on the button.
    const char* name; ///< For the tool tip.
};

struct SingleSymbol
{
    const char* button;
    int code;
    const char* name;
};

[[nodiscard]] std::span<const WrappingSymbols> WrappingSymbolTable();
[[nodiscard]] std::span<const SingleSymbol> SingleSymbolTable();

/// Returns the character of a code.
[[nodiscard]] QString SymbolText(int code);

/// Inserts the character of a code after the selection, which is unchanged.
void InsertSpecialCharacter(DisplayDocument& document, int code);

/// The kind that inserts characters by number.
inline constexpr char UserAsciiKind[] = "UserAscii";

/// Inserts a pair around the selected text, or characters by number after the selection.
///
/// A pair replaces the selection by plain text: several selected lines lose their painting, by design.
/// \param kind   the name of a button for a pair, or `UserAsciiKind`; other texts have no effect
/// \param extra  the numbers for `UserAsciiKind`
void InsertSpecialSymbols(DisplayDocument& document, const QString& kind, const QString& extra);

/// Returns the characters of decimal numbers that are separated by single blanks. Each number consists of the
/// leading digits of its piece; it is 0 without digits. Number 0, unpaired surrogates and numbers that are
/// not in Unicode produce no character.
[[nodiscard]] QString TextOfNumbers(const QString& numbers);

} // namespace vmk
