#pragma once

#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The settings file: the image of one record, with nothing before, between or behind its fields.
/// A text is a 16-bit length and that many bytes, an integer 16 bits, a position a 32-bit float; all low
/// byte first.
namespace vmk {

using SettingsValue = std::variant<QString, int16_t, float>;

inline constexpr std::size_t SettingsFieldCount = 32;

/// One value for each field, in the order of the file.
using SettingsRecord = std::array<SettingsValue, SettingsFieldCount>;

/// A record with every field of its type, empty or 0.
[[nodiscard]] const SettingsRecord& EmptySettingsRecord();

/// The bytes of the file. Texts are written in the system's code page, or in UTF-8 where that page cannot
/// hold them or its bytes would read as UTF-8. A text over 65535 bytes is cut.
[[nodiscard]] std::string EncodeSettings(const SettingsRecord& record);

/// The record of a file's bytes; nothing if they are too few or a position is no number. Bytes behind the
/// record are ignored. Texts that are valid UTF-8 are taken as such, all others as the system's code page.
[[nodiscard]] std::optional<SettingsRecord> DecodeSettings(std::string_view bytes);

} // namespace vmk
