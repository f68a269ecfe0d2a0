#pragma once

#include "BookLosses.h"
#include "Encodings.h"
#include "OutlinePage.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vmk {

/// A book in common form (`BookOutline`), read without losses and without a parser. It has the same page,
/// pictures, encoding and losses as the one of `ReadKeptBook`, which reads every book.
struct OutlinedBook
{
    std::shared_ptr<OutlinedText> text;
    DetectedEncoding encoding;
    std::string binaryPart;
    std::int32_t binaryCodePage = 0;
    BookLosses losses;

    /// Returns the bytes that the book was read from. The book is empty afterwards.
    [[nodiscard]] std::string takeBytes();

    // The parts of the bytes that the text does not contain.
    std::string bytes; ///< all of them, if they are not UTF-8
    std::string description; ///< up to the end of the description, before its update
    std::size_t updatedEnd = 0; ///< the end of the updated description in the text
    std::string afterPictures; ///< empty if there are no pictures
};

/// Reads a book in common form. Returns nothing, with the bytes unchanged, if it is not in this form.
/// \param bytes          of the book; empty afterwards if it was read
/// \param showNbsp       non-breaking spaces are visible in the display
/// \param inputEncoding  "original"; with any other encoding no book is in common form
[[nodiscard]] std::optional<OutlinedBook> ReadOutlinedBook(std::string& bytes, bool showNbsp,
                                                           const InLineTagSet& inLineTags,
                                                           const QString& inputEncoding);

} // namespace vmk
