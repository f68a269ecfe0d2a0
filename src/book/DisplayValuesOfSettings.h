#pragma once

#include "DisplayValues.h"

#include <QString>

#include <string>

namespace vmk {

/// Returns a value for the styles and attributes of the page: without the characters that end a value, a rule
/// or a tag, so that a setting cannot change the structure of the page.
[[nodiscard]] std::string StyleText(const QString& value);

/// The display values of the settings in force.
[[nodiscard]] DisplayValues DisplayValuesOfSettings();

} // namespace vmk
