#pragma once

#include "BookLosses.h"
#include "BookPage.h"
#include "Encodings.h"

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

/// Reads a book so that the display contains all of it.
namespace vmk {

/// A book that was read without losses.
struct KeptBook
{
    std::string page; ///< of the display
    bool hasTree = false; ///< the text is well-formed
    DetectedEncoding encoding;
    std::string binaryPart;
    int32_t binaryCodePage = 0;
    /// The changes that the editor's own reading would have made. If there are none, its page is the same.
    BookLosses losses;
};

/// Reads the bytes of a book without losses, with the given settings.
/// \param values         of the display
/// \param inputEncoding  "original", or the encoding that the user has chosen
[[nodiscard]] KeptBook ReadKeptBook(std::string_view bytes, const DisplayValues& values,
                                    const InLineTagSet& inLineTags, const QString& inputEncoding);

} // namespace vmk
