#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vmk {

/// The characters of a text that an encoding lacks.
struct MissingCharacters
{
    size_t count = 0;
    QString examples; ///< the first distinct ones, separated by blanks; "U+200B" if it cannot be seen
};

/// What is done about them.
enum class MissingAnswer
{
    Substitute, ///< They are replaced by similar ones or by question marks.
    Utf8, ///< The book is saved in UTF-8.
    Cancel ///< The book is not saved.
};

/// Finds the characters of a UTF-8 text that `codePage` lacks and that saving would substitute.
[[nodiscard]] MissingCharacters FindMissingCharacters(std::string_view text, int32_t codePage);

/// Returns the question of the window: whether to save in UTF-8; Yes, No or Cancel.
[[nodiscard]] QString MissingCharactersQuestion(const MissingCharacters& missing, const QString& encoding);

} // namespace vmk
