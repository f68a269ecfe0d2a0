#pragma once

#include <optional>
#include <string>

/// The plain oracles of shifting and repainting: HTML of the lines in, HTML of the lines out, one replacement
/// in the complete string after the other. Written for readability, not for speed.
namespace vmk::reference {

/// All lines one step to the right.
std::string ShiftRight(std::string html, int nodeShift);

/// All lines that can move one step to the left; nothing if the command does not change the document.
/// @param oneLine whether the selection is in a single line.
std::optional<std::string> ShiftLeft(std::string html, int nodeShift, bool oneLine);

/// Removes all painting.
std::string StripPainting(std::string html);

struct PaintRequest
{
    bool tagHighlighting = true;
    std::string tagFontWeight = "bold";
    std::string displayFontWeight = "normal";
};

/// Paints bare lines.
std::string PaintLines(std::string html, const PaintRequest& request);

} // namespace vmk::reference
