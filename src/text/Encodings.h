#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Which encoding a book has, and the way to UTF-8 and back. A book's text is a byte string throughout.
namespace vmk {

/// An encoding as the book's variables hold it.
struct BookEncoding
{
    /// Small letters, as in a declaration: "windows-1251".
    std::string name;
    int32_t codePage = 0;
    /// `<meta content="text/html; charset=..." http-equiv="Content-Type">`
    std::string metaTag;

    bool operator==(const BookEncoding&) const = default;
};

/// What a book's text tells about its encoding.
struct DetectedEncoding
{
    /// How the text is to be read.
    BookEncoding work;
    /// What the file itself declares.
    BookEncoding file;
    /// The XML declaration in small letters; a made one where the file has none.
    std::string declaration;
};

/// What stands in a saved book.
struct SavedEncoding
{
    std::string name;
    std::string declaration;
    int32_t codePage = 0;

    bool operator==(const SavedEncoding&) const = default;
};

/// 1251, 1252 and 1250 for "windows-" and the number, 65001 for "utf-8", 1200 for "unicode", compared
/// exactly; 1251 for any other name.
[[nodiscard]] int32_t EncodingCodePage(std::string_view name);

/// An encoding with the code page and meta tag that belong to its name.
[[nodiscard]] BookEncoding MakeBookEncoding(std::string name);

/// Whether the bytes are UTF-16, low byte first: by the mark FF FE, or by their statistics. Ordinary text of
/// one byte a character, and UTF-8, hold next to no control characters but tab, LF and CR. In UTF-16 every
/// character of most scripts has one as its high byte: 0 for Latin, 3 for Greek, 4 for Cyrillic; and mark-up
/// and digits are Latin in every book. So the bytes are UTF-16 if at least a tenth of the second bytes of the
/// pairs are such controls, and more of them than of the first bytes. The first 64 KiB are looked at.
[[nodiscard]] bool IsUnicodeText(std::string_view text);

/// True if the text holds any of "&#0" to "&#9"; hexadecimal references do not count.
[[nodiscard]] bool HasCharRefs(std::string_view text);

/// What the text is: UTF-16 by `IsUnicodeText`; else what its declaration names; else windows-1251. An
/// `inputEncoding` other than "original" takes the place of the work encoding, except for UTF-16.
[[nodiscard]] DetectedEncoding FindBookEncoding(std::string_view text, std::string_view inputEncoding);

/// As `FindBookEncoding`, into the shared variables `Work...`, `File...` and `XmlDeclaration`, with the
/// setting `InputEncoding`.
void DetectBookEncoding(std::string_view text);

/// What the declaration of a text that is not UTF-16 says; work and file are the same. No shared variable is
/// read or changed.
[[nodiscard]] DetectedEncoding DetectPreviewEncoding(std::string_view text);

/// Converts a book from `WorkCodePage` to UTF-8 and sets `BookHasCharRefs`. A book with decimal character
/// references stays as it is until they are resolved; UTF-8 stays as it is, whatever it holds.
void ConvertBookToUtf8(std::string& text);

/// UTF-16 bytes, low byte first, to a code page; a mark FF FE is dropped. The result is cut to as many bytes
/// as there were code units: harmless for one byte a character, and in UTF-8 a text that is not ASCII loses
/// its tail, which the parser then reports. False if there was nothing to convert.
bool UnicodeToCodePage(std::string& text, int codePage);

/// UTF-8 to a code page and back, without characters 0.
void Utf8ToCodePage(std::string& text, int codePage);
void CodePageToUtf8(std::string& text, int codePage);

/// The encoding to save in: the one named (in any case) if it is one of windows-1251, windows-1252,
/// windows-1250 and utf-8; utf-8 otherwise.
[[nodiscard]] SavedEncoding OutputEncodingInfo(std::string_view name);

} // namespace vmk
