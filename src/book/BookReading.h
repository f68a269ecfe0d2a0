#pragma once

#include "BookLosses.h"
#include "BookPage.h"
#include "Encodings.h"

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

/// Reading a book so that the display holds all of it.
namespace vmk {

/// A book as it was read without losses.
struct KeptBook
{
    std::string page; ///< of the display
    bool hasTree = false; ///< the text is well-formed
    DetectedEncoding encoding;
    std::string binaryPart;
    int32_t binaryCodePage = 0;
    /// What the editor's own reading would have changed. If nothing, its page is the same.
    BookLosses losses;
};

/// Reads the bytes of a book without losses, with the given settings.
/// \param values         of the display
/// \param inputEncoding  "original", or the encoding that the user has chosen
[[nodiscard]] KeptBook ReadKeptBook(std::string_view bytes, const DisplayValues& values,
                                    const InLineTagSet& inLineTags, const QString& inputEncoding);

} // namespace vmk
