#pragma once

#include "DisplayCharacters.h"
#include "KeptLines.h"

#include <QString>
#include <QStringList>

#include <cstddef>

namespace vmk {

/// The changes, counted, that the editor's own reading would make to a book, and those of any reading.
struct BookLosses
{
    LineLosses lines;
    ProtectedCharacters characters;
    size_t movedElements = 0; ///< elements of a paragraph that would become separate lines
    size_t cutCharacters = 0; ///< at the end of a text in UTF-16
    size_t misreadCharacters = 0; ///< characters that would be read in another encoding than the book's
    QString encoding; ///< the book's encoding, if characters would be misread
    size_t garbledBrackets = 0; ///< `&lt;` and `&gt;` in a code page with decimal references
    size_t droppedBytes = 0; ///< characters before the root and after the last picture
    size_t misplacedPictures = 0; ///< "<binary" and "</FictionBook>" in comments and similar
    size_t descriptions = 0; ///< a description whose mark-up the update would remove
    size_t controls = 0; ///< control characters of a broken text, including tabs between words
    size_t foreignBytes = 0; ///< bytes that are not valid UTF-8
    size_t replacedBytes = 0; ///< half a character at the end of a text in UTF-16: lost in any reading

    /// Returns true if a reading without losses would differ from the editor's.
    [[nodiscard]] bool any() const;
    /// Returns one line per kind of loss, with its count: "12 line ends that part two words would go, …".
    [[nodiscard]] QStringList descriptionLines() const;
};

/// Returns the question of the window: one line per loss, and whether to load without them.
[[nodiscard]] QString LossQuestion(const BookLosses& losses);

} // namespace vmk
