#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Finds `binary` elements in the binary part of a book by plain searches, without a parser.
///
/// The binary part is a byte string in the book's own encoding. Positions are in bytes, from 0. Views in the
/// results point into the text that was searched.
namespace vmk {

/// The most elements that one command of the window looks at; a book with more is handled in part.
inline constexpr int MostBinaryElements = 5000;

struct BinaryElement
{
    /// The start tag, from "<binary" to ">".
    std::string_view tag;
    /// What is between the start tag and "</binary>".
    std::string_view data;
    /// Where the search for the next element begins.
    size_t next = 0;
};

/// A start tag without its element.
struct BinaryTag
{
    std::string_view tag;
    /// Position of the ">".
    size_t end = 0;
};

/// The first start tag at or after `from`.
[[nodiscard]] std::optional<BinaryTag> NextBinaryTag(std::string_view binaryPart, size_t from);

/// The element of a start tag; nothing without an end tag.
[[nodiscard]] std::optional<BinaryElement> ElementOfTag(std::string_view binaryPart, const BinaryTag& tag);

/// True when the start tag says that the element is a picture.
[[nodiscard]] bool IsPictureTag(std::string_view tag);

/// Position of the first `id="` that is followed by `id`; npos without one. No closing quote is asked for, so
/// the beginning of an id finds it too, which is meant.
[[nodiscard]] size_t FindBinaryId(std::string_view binaryPart, std::string_view id);

/// The element around the first `id="` that is followed by `id`. The tag is empty when the id is in none.
[[nodiscard]] std::optional<BinaryElement> FindBinaryElement(std::string_view binaryPart,
                                                             std::string_view id);

/// Takes out the element whose id begins with `id`, and with it the empty lines. A rest without content
/// becomes the empty string. False, and nothing changes, when there is no such element.
bool RemoveBinaryElement(std::string& binaryPart, std::string_view id);

/// One element on one line, with `data` as base64.
/// @param extension "png"; anything else means JPEG.
/// @param id        bytes as they are to appear between the quotes
[[nodiscard]] std::string MakeBinaryElement(const QString& extension, std::string_view id,
                                            std::string_view data);

/// An id as the display shows it, in the bytes of the binary part: mark-up characters, and characters that
/// the code page lacks, are references.
[[nodiscard]] std::string IdInBinaryPart(const QString& shownId, int codePage);

} // namespace vmk
