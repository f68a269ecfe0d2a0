#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Finds `binary` elements in the binary part of a book by plain searches, without a parser.
///
/// The binary part is a byte string in the book's encoding. Positions are in bytes, from 0. Views in results
/// point into the searched text.
namespace vmk {

/// The maximum number of elements that a command of the window reads; it ignores further elements.
inline constexpr int MostBinaryElements = 5000;

struct BinaryElement
{
    /// The start tag, from "<binary" to ">".
    std::string_view tag;
    /// The text between the start tag and "</binary>".
    std::string_view data;
    /// The position at which the search for the next element begins.
    size_t next = 0;
};

/// A start tag without its element.
struct BinaryTag
{
    std::string_view tag;
    /// Position of the ">".
    size_t end = 0;
};

/// Returns the first start tag at or after `from`.
[[nodiscard]] std::optional<BinaryTag> NextBinaryTag(std::string_view binaryPart, size_t from);

/// Returns the element of a start tag; nothing if it has no end tag.
[[nodiscard]] std::optional<BinaryElement> ElementOfTag(std::string_view binaryPart, const BinaryTag& tag);

/// Returns true if the content type of a start tag is that of a picture.
[[nodiscard]] bool IsPictureTag(std::string_view tag);

/// Returns the position of the first `id="` that is followed by `id`; npos if there is none. By design the
/// closing quote is not required: the beginning of an id matches too.
[[nodiscard]] size_t FindBinaryId(std::string_view binaryPart, std::string_view id);

/// Returns the element of the first `id="` that is followed by `id`. Its tag is empty if the id is not in a
/// tag.
[[nodiscard]] std::optional<BinaryElement> FindBinaryElement(std::string_view binaryPart,
                                                             std::string_view id);

/// Removes the element whose id begins with `id`, and empty lines. A remainder without content becomes the
/// empty string.
/// \return false, with `binaryPart` unchanged, if there is no such element
bool RemoveBinaryElement(std::string& binaryPart, std::string_view id);

/// Returns an element on one line.
/// \param extension  "png"; any other text means JPEG
/// \param id         the bytes between the quotes, see `IdInBinaryPart`
/// \param data       the content; it is encoded as base64
[[nodiscard]] std::string MakeBinaryElement(const QString& extension, std::string_view id,
                                            std::string_view data);

/// Converts an id of the display to the bytes of the binary part. Mark-up characters, and characters that the
/// code page lacks, become references.
[[nodiscard]] std::string IdInBinaryPart(const QString& shownId, int codePage);

} // namespace vmk
