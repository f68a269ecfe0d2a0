#pragma once

#include <QLocale>
#include <QString>
#include <QStringView>

#include <optional>
#include <string>
#include <string_view>

/// Converts between byte strings in the code pages 1250, 1251 and 1252, UTF-8 and UTF-16 (little-endian), and
/// text.
///
/// A code page is one of the numbers below or 0, the system's code page; any other number is treated as 0.
/// Conversions never fail: bytes and characters without a counterpart are substituted.
namespace vmk {

inline constexpr int CodePageCentralEurope = 1250;
inline constexpr int CodePageCyrillic = 1251;
inline constexpr int CodePageWestern = 1252;
inline constexpr int CodePageUtf16 = 1200;
inline constexpr int CodePageUtf8 = 65001;
/// Means `SystemCodePage()`.
inline constexpr int CodePageSystem = 0;

/// Returns the user's single-byte code page: that of the system's locale, unless the environment variable
/// VELLUMARK_CODEPAGE is 1250, 1251 or 1252. The variable is read at each call.
[[nodiscard]] int SystemCodePage();

/// Returns 1251 if the locale's language is written in Cyrillic, 1250 for the Latin languages of Central
/// Europe, otherwise 1252.
[[nodiscard]] int CodePageOfLocale(const QLocale& locale);

/// Returns the character of one byte of a single-byte code page. Bytes that the page leaves undefined map to
/// the C1 control with the same number.
[[nodiscard]] char16_t CharacterOfByte(unsigned char byte, int codePage);

/// Returns the byte for exactly this character in a single-byte code page, if there is one.
[[nodiscard]] std::optional<unsigned char> ByteOfCharacter(char32_t character, int codePage);

/// Converts bytes to text. In malformed UTF-8, each byte that is not part of a character becomes one U+FFFD.
/// A leading byte order mark is kept. An unpaired last byte of UTF-16 is ignored.
[[nodiscard]] QString DecodeBytes(std::string_view bytes, int codePage);

/// Converts text to bytes. In a single-byte page every UTF-16 code unit becomes exactly one byte: its own, or
/// that of the nearest character in the page (an accented letter becomes its base letter, a typographic dash
/// or blank its plain form), or "?"; a character outside the basic plane becomes "??". A substitute is never
/// one of the characters < > & or a straight quote, which would be read as mark-up. In UTF-8 a lone surrogate
/// becomes U+FFFD.
[[nodiscard]] std::string EncodeText(QStringView text, int codePage);

/// Same as `EncodeText(DecodeBytes(bytes, codePage), CodePageUtf8)`, without the intermediate text.
[[nodiscard]] std::string BytesToUtf8(std::string_view bytes, int codePage);

/// Same as `EncodeText(DecodeBytes(utf8, CodePageUtf8), codePage)`, without the intermediate text.
[[nodiscard]] std::string Utf8ToBytes(std::string_view utf8, int codePage);

/// Returns the length of the longest prefix of the bytes that is valid UTF-8.
[[nodiscard]] size_t ValidUtf8Prefix(std::string_view bytes);

/// Returns true if all bytes are valid UTF-8 (this includes ASCII and the empty string).
[[nodiscard]] bool IsValidUtf8(std::string_view bytes);

} // namespace vmk
