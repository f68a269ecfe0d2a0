#pragma once

#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The settings file: one record without any bytes before, between or after its fields. A text is a 16-bit
/// length followed by that many bytes, an integer has 16 bits, a position is a 32-bit float. All are in
/// little-endian byte order.
namespace vmk {

using SettingsValue = std::variant<QString, int16_t, float>;

inline constexpr std::size_t SettingsFieldCount = 32;

/// One value per field, in the order of the file.
using SettingsRecord = std::array<SettingsValue, SettingsFieldCount>;

/// Returns a record in which every field has its type and is empty or 0.
[[nodiscard]] const SettingsRecord& EmptySettingsRecord();

/// Returns the bytes of the file. Texts are written in the system's code page, or in UTF-8 if that page lacks
/// one of their characters or if the resulting bytes would be valid UTF-8. A text over 65535 bytes is cut.
[[nodiscard]] std::string EncodeSettings(const SettingsRecord& record);

/// Reads the record from the bytes of a file. Returns nothing if they are too few or a position is not a
/// number. Bytes after the record are ignored. Texts that are valid UTF-8 are read as UTF-8, all others as
/// the system's code page.
[[nodiscard]] std::optional<SettingsRecord> DecodeSettings(std::string_view bytes);

} // namespace vmk
