#pragma once

#include <QLocale>
#include <QString>
#include <QStringView>

#include <optional>
#include <string>
#include <string_view>

/// Code pages 1250, 1251 and 1252, UTF-8 and UTF-16 (low byte first), between byte strings and text.
///
/// Everywhere here a code page is one of the numbers below or 0, the system's own; any other number is read
/// as the system's own too. Nothing fails: bytes and characters that have no counterpart are substituted.
namespace vmk {

inline constexpr int CodePageCentralEurope = 1250;
inline constexpr int CodePageCyrillic = 1251;
inline constexpr int CodePageWestern = 1252;
inline constexpr int CodePageUtf16 = 1200;
inline constexpr int CodePageUtf8 = 65001;
/// Stands for `SystemCodePage()`.
inline constexpr int CodePageSystem = 0;

/// The user's single-byte code page: that of the system's locale, unless the environment variable
/// VELLUMARK_CODEPAGE is set to 1250, 1251 or 1252. The variable is read anew at each call.
[[nodiscard]] int SystemCodePage();

/// 1251 where the locale's language is written in Cyrillic, 1250 for the Latin languages of Central Europe,
/// 1252 otherwise.
[[nodiscard]] int CodePageOfLocale(const QLocale& locale);

/// The character of one byte of a single-byte code page. Bytes that the page leaves undefined give the C1
/// control of the same number.
[[nodiscard]] char16_t CharacterOfByte(unsigned char byte, int codePage);

/// The byte that stands for exactly this character in a single-byte code page, if there is one.
[[nodiscard]] std::optional<unsigned char> ByteOfCharacter(char32_t character, int codePage);

/// Bytes to text. Malformed UTF-8 gives one U+FFFD for each byte that belongs to no character; a leading
/// byte-order mark stays in the text; the odd last byte of UTF-16 is dropped.
[[nodiscard]] QString DecodeBytes(std::string_view bytes, int codePage);

/// Text to bytes. In a single-byte page every UTF-16 code unit gives exactly one byte: its own, or the one
/// of the nearest character that the page has (an accented letter its base letter, a typographic dash or
/// blank its plain form), or "?"; so a character outside the basic plane gives "??". No substitution ever
/// yields one of the characters < > & and the two straight quotes, which would be read as mark-up. A lone
/// surrogate gives U+FFFD in UTF-8.
[[nodiscard]] std::string EncodeText(QStringView text, int codePage);

/// As `EncodeText(DecodeBytes(bytes, codePage), CodePageUtf8)`, without the detour.
[[nodiscard]] std::string BytesToUtf8(std::string_view bytes, int codePage);

/// As `EncodeText(DecodeBytes(utf8, CodePageUtf8), codePage)`, without the detour.
[[nodiscard]] std::string Utf8ToBytes(std::string_view utf8, int codePage);

/// Length of the longest beginning of the bytes that is UTF-8.
[[nodiscard]] size_t ValidUtf8Prefix(std::string_view bytes);

/// True if the bytes are UTF-8 throughout (plain ASCII and the empty string are).
[[nodiscard]] bool IsValidUtf8(std::string_view bytes);

} // namespace vmk
