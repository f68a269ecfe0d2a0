#pragma once

#include "Seam.h"

#include <string>

namespace vmk {

/// What one conversion to the display needs to know of the settings, as bytes of UTF-8.
struct DisplayValues
{
    std::string fontName;
    std::string fontSize;
    std::string fontWeight;
    std::string textAlign;
    std::string leftMargin;
    std::string rightMargin;
    std::string foreColor;
    std::string backColor;
    /// Pixels per tree level.
    int nodeShift = 0;
    std::string tagColor;
    std::string attrNameColor;
    std::string attrValColor;
    std::string tagFontWeight;
    bool tagHighlighting = false;
    /// Non-breaking spaces are shown as `NbspMarker`.
    bool showNbsp = false;
};

/// The display values of the settings in force.
[[nodiscard]] DisplayValues DisplayValuesOfSettings();

/// The display values of a preview: what the controls of the settings dialog hold. Without the dialog those
/// of the settings.
[[nodiscard]] Seam<DisplayValues()>& PreviewValuesSeam();

} // namespace vmk
