#pragma once

#include "DisplayValues.h"

#include <QString>

#include <string>

namespace vmk {

/// Returns a value for the styles and attributes of the page: without the characters that end a value, a rule
/// or a tag, so that a setting cannot change the structure of the page.
[[nodiscard]] std::string StyleText(const QString& value);

/// Returns the display values of the current settings.
[[nodiscard]] DisplayValues DisplayValuesOfSettings();

} // namespace vmk
