#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vmk {

/// Characters of a text that an encoding has no place for.
struct MissingCharacters
{
    size_t count = 0;
    QString examples; ///< the first different ones, parted by blanks
};

/// Looks for the characters of a text in UTF-8 that `codePage` lacks and that saving would substitute.
[[nodiscard]] MissingCharacters FindMissingCharacters(std::string_view text, int32_t codePage);

/// The question of the window: whether to save in UTF-8.
[[nodiscard]] QString MissingCharactersQuestion(const MissingCharacters& missing, const QString& encoding);

} // namespace vmk
