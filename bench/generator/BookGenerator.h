#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vmk {

/// The properties of a generated book.
struct BookPlan
{
    size_t size = 100'000; ///< bytes, within a fifth; the smallest book has some 13 kB
    uint32_t seed = 1; ///< the same plan produces the same book
    /// "utf-8", "utf-16" (low byte first, with a byte order mark), "windows-1250", "windows-1251" or
    /// "windows-1252". Characters that are not in the encoding are written as numeric references.
    std::string encoding = "utf-8";
    std::string lineEnd = "\n";
    /// With elements in the text that loading by the editor's own rules would move to other lines.
    bool movable = true;
    bool pictures = true; ///< about an eighth of the size, and at least one
};

/// True for the encodings that `MakeBook` writes.
[[nodiscard]] bool IsBookEncoding(const std::string& encoding);

/// Generates a book that is valid against the schema: every element and attribute of the format in a
/// realistic mix, Cyrillic and Latin text, notes and links to them.
[[nodiscard]] std::string MakeBook(const BookPlan& plan);

} // namespace vmk
