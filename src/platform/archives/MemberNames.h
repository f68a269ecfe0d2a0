#pragma once

#include <QString>

#include <string_view>

namespace vmk {

/// Returns the name of an archive's member.
///
/// Only a part of the programs that make archives mark a name in UTF-8 as such. A name without the mark is in
/// UTF-8 if it is valid UTF-8 and would contain box-drawing characters in code page 866, which no name does.
/// Every other name is in code page 866, as Russian archives are made.
/// \param bytes   the name as stored
/// \param isUtf8  the archive marks the name as UTF-8; invalid bytes are then read in code page 866
[[nodiscard]] QString MemberName(std::string_view bytes, bool isUtf8);

} // namespace vmk
