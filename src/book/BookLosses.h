#pragma once

#include "DisplayCharacters.h"
#include "KeptLines.h"

#include <QString>
#include <QStringList>

#include <cstddef>

namespace vmk {

/// What the editor's own reading of a book would change, counted, and what no reading keeps.
struct BookLosses
{
    LineLosses lines;
    ProtectedCharacters characters;
    size_t movedElements = 0; ///< elements of a paragraph that would get lines of their own
    size_t cutCharacters = 0; ///< at the end of a text in UTF-16
    size_t misreadCharacters = 0; ///< read in another encoding than the book's
    QString encoding; ///< the book's own, where characters would be misread
    size_t garbledBrackets = 0; ///< `&lt;` and `&gt;` in a code page with decimal references
    size_t droppedBytes = 0; ///< characters before the root and after the last picture
    size_t misplacedPictures = 0; ///< "<binary" and "</FictionBook>" that are not what they look like
    size_t descriptions = 0; ///< a description whose mark-up the update would take away
    size_t controls = 0; ///< control characters of a broken text, tabs between words among them
    size_t foreignBytes = 0; ///< bytes that are no characters of UTF-8
    size_t replacedBytes = 0; ///< half a character at the end of a text in UTF-16: lost in any reading

    /// True if a reading without losses would differ from the editor's.
    [[nodiscard]] bool any() const;
    /// One line for each loss, with its count: "12 line ends that part two words would go, …".
    [[nodiscard]] QStringList descriptionLines() const;
};

/// The question of the window: each loss on a line of its own, and whether to load without them.
[[nodiscard]] QString LossQuestion(const BookLosses& losses);

} // namespace vmk
