#pragma once

#include <string>

namespace vmk {

/// The settings that one conversion to the display uses, as UTF-8.
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

} // namespace vmk
