#pragma once

#include <optional>
#include <string>

/// The plain oracles of shifting and repainting: the lines' HTML in, the lines' HTML out, one whole-string
/// replace after the other. Written for reading, not for speed.
namespace vmk::reference {

/// All lines one step to the right.
std::string ShiftRight(std::string html, int nodeShift);

/// All lines that can go one step to the left; nothing when the command leaves the document alone.
/// @param oneLine the selection lies in a single line.
std::optional<std::string> ShiftLeft(std::string html, int nodeShift, bool oneLine);

/// Takes all painting out.
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
