#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Detects the encoding of a book and converts its text to UTF-8 and back. The text is always a byte string.
namespace vmk {

/// An encoding as stored in the book's variables.
struct BookEncoding
{
    /// In lower case, as in a declaration: "windows-1251".
    std::string name;
    int32_t codePage = 0;
    /// `<meta content="text/html; charset=..." http-equiv="Content-Type">`
    std::string metaTag;

    bool operator==(const BookEncoding&) const = default;
};

/// The encodings that were detected in a book's text.
struct DetectedEncoding
{
    /// The encoding in which the text is read.
    BookEncoding work;
    /// The encoding that the file declares.
    BookEncoding file;
    /// The XML declaration in lower case; a generated one if the file has none.
    std::string declaration;
};

/// The encoding of a saved book.
struct SavedEncoding
{
    std::string name;
    std::string declaration;
    int32_t codePage = 0;

    bool operator==(const SavedEncoding&) const = default;
};

/// Returns 1251, 1252 or 1250 for "windows-" and the number, 65001 for "utf-8", 1200 for "unicode", compared
/// exactly; 1251 for any other name.
[[nodiscard]] int32_t EncodingCodePage(std::string_view name);

/// Returns an encoding with the code page and meta tag of its name.
[[nodiscard]] BookEncoding MakeBookEncoding(std::string name);

/// Returns whether the bytes are little-endian UTF-16: by the byte order mark FF FE, or by statistics.
/// Ordinary single-byte text and UTF-8 contain almost no control characters except tab, LF and CR. In UTF-16,
/// every character of most scripts has one as its high byte: 0 for Latin, 3 for Greek, 4 for Cyrillic; and
/// mark-up and digits are Latin in every book. So the bytes are UTF-16 if at least a tenth of the second
/// bytes of the pairs are such controls, and more of them than of the first bytes. Only the first 64 KiB are
/// examined.
[[nodiscard]] bool IsUnicodeText(std::string_view text);

/// Returns true if the text contains any of "&#0" to "&#9"; hexadecimal references do not count.
[[nodiscard]] bool HasCharRefs(std::string_view text);

/// Detects the encoding of a text: UTF-16 by `IsUnicodeText`, otherwise by its declaration, otherwise
/// windows-1251. An `inputEncoding` other than "original" replaces the work encoding, except for UTF-16.
[[nodiscard]] DetectedEncoding FindBookEncoding(std::string_view text, std::string_view inputEncoding);

/// Like `FindBookEncoding`, with the setting `InputEncoding`. Stores the result in the shared variables
/// `Work...`, `File...` and `XmlDeclaration`.
void DetectBookEncoding(std::string_view text);

/// Returns the encoding in the declaration of a text that is not UTF-16, for both work and file. Does not use
/// any shared variable.
[[nodiscard]] DetectedEncoding DetectPreviewEncoding(std::string_view text);

/// Converts a book from `WorkCodePage` to UTF-8 and sets `BookHasCharRefs`. A book with decimal character
/// references is unchanged until they are resolved; UTF-8 is always unchanged.
void ConvertBookToUtf8(std::string& text);

/// Converts little-endian UTF-16 to a code page; removes a byte order mark FF FE. The result is cut to as
/// many bytes as there were code units. This has no effect on single-byte text; in UTF-8 a text that is not
/// ASCII loses its end, which the parser then reports. Returns false if there was nothing to convert.
bool UnicodeToCodePage(std::string& text, int codePage);

/// Converts UTF-8 to a code page and back, without characters 0.
void Utf8ToCodePage(std::string& text, int codePage);
void CodePageToUtf8(std::string& text, int codePage);

/// Returns the encoding to save in: the named one (in any case) if it is windows-1251, windows-1252,
/// windows-1250 or utf-8; otherwise utf-8.
[[nodiscard]] SavedEncoding OutputEncodingInfo(std::string_view name);

} // namespace vmk
