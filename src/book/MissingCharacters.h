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
    QString examples; ///< the first distinct ones, separated by blanks
};

/// Finds the characters of a UTF-8 text that `codePage` lacks and that saving would substitute.
[[nodiscard]] MissingCharacters FindMissingCharacters(std::string_view text, int32_t codePage);

/// Returns the question of the window: whether to save in UTF-8.
[[nodiscard]] QString MissingCharactersQuestion(const MissingCharacters& missing, const QString& encoding);

} // namespace vmk
