#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The plain oracles of the conversions: every step separately, one replacement in the complete string after
/// the other, in the defined order. Written for readability, not for speed.
namespace vmk::reference {

struct DisplayValues
{
    std::string fontName, fontSize, fontWeight, textAlign, leftMargin, rightMargin, foreColor, backColor;
    int nodeShift = 5;
    std::string tagColor, attrNameColor, attrValColor, tagFontWeight;
    bool tagHighlighting = true;
    bool showNbsp = true;
};

struct PageRequest
{
    DisplayValues values;
    std::vector<std::string> inLineTags;
    /// Written instead of the declaration of the parser.
    std::string xmlDeclaration;
    /// The text's code page while its references are not resolved; 65001 for UTF-8.
    int codePage = 65001;
    /// The text is converted with a tree.
    bool wellFormed = true;
    /// Writes the ampersands of a text that is not well-formed.
    std::function<std::string(const std::string&)> ampersands = [](const std::string& text) { return text; };
};

/// What `ParserPass` writes.
enum class Form
{
    Xml,
    Display
};

std::string ReplaceAll(std::string text, std::string_view sought, std::string_view replacement);
/// Replaces as `ReplaceAll` does until the length no longer changes.
std::string CollapseRepeats(std::string text, std::string_view unit);
std::string TrimBlanks(std::string_view text);
/// Replaces every match of `start`, `[^>]*` and ">" by `before`, what `[^>]*` and `kept` matched, and
/// `after`. `kept` is the end of `start` that is kept.
std::string ReplaceUpToAngle(const std::string& text, std::string_view start, std::string_view before,
                             std::string_view kept, std::string_view after, bool ignoreCase);

/// Replaces every match of `start`, `[^>]*` and ">" by `replacement`.
std::string ReplaceWholeTags(const std::string& text, std::string_view start, std::string_view replacement,
                             bool ignoreCase);

std::string PrepareTreeLines(std::string text, std::string_view lineEnd,
                             const std::vector<std::string>& inLineTags);
std::string PaintAttributes(std::string text);
/// The parser's `xml`: a libxml2 tree and a recursive writer. Empty if the text is not well-formed.
std::string ParserPass(const std::string& text, int codePage, const std::vector<std::string>& inLineTags,
                       Form form);
bool HasParseError(const std::string& text, int codePage);

/// From the text with its updated description (`&lt;` and `&gt;` protected) to the complete page.
std::string Page(std::string text, const PageRequest& request);
/// Steps 1 to 10 of the conversion back, for validation (U+00A0 for the marker).
std::string ExtractText(std::string page);

struct SaveRequest
{
    std::string style;
    /// Written at the start of the file.
    std::string declaration;
    std::vector<std::string> inLineTags;
    std::string binaryPart;
    /// The non-breaking space in the encoding of the file.
    std::string nbsp;
};
/// The text of the file in UTF-8 before the encoding; sets `treeSkipped` if the parser rejected it.
std::string SaveText(std::string page, const SaveRequest& request, bool& treeSkipped);
/// Adds the binary part and normalises line ends, in the encoded text.
std::string FinishFile(std::string text, const SaveRequest& request, bool treeSkipped);

std::string UpdateDescription(std::string text, std::string_view nbsp);

} // namespace vmk::reference
