#include "SettingsValues.h"

#include "DisplayValuesOfSettings.h"
#include "SettingsVariables.h"

#include <cmath>
#include <limits>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int On = 1;

int Flag(bool on)
{
    return on ? On : 0;
}

} // namespace

SettingsValues ValuesOfSettings()
{
    SettingsValues values;
    values.inputEncoding = InputEncoding;
    values.namespaceErrorWarning = NamespaceErrorWarning == On;
    values.outputEncoding = OutputEncoding;
    values.outputStyle = OutputStyle;
    values.fontName = DisplayFontName;
    values.fontSize = DisplayFontSize;
    values.fontWeight = DisplayFontWeight;
    values.textAlign = DisplayTextAlign;
    values.leftMargin = DisplayLeftMargin;
    values.rightMargin = DisplayRightMargin;
    values.foreColor = DisplayForeColor;
    values.backColor = DisplayBackColor;
    values.tagColor = TagColor;
    values.attrNameColor = AttrNameColor;
    values.attrValColor = AttrValColor;
    values.tagFontWeight = TagFontWeight;
    values.nodeShift = QString::number(NodeShift);
    values.tagHighlighting = TagHighlighting == On;
    values.sounds = SoundsOn == On;
    values.showNbsp = ShowNbsp == On;
    values.commandLineInfo = CommandLineInfo == On;
    values.previewOnChange = PreviewOnChange == On;
    return values;
}

void TakeSettings(const SettingsValues& values)
{
    InputEncoding = values.inputEncoding;
    NamespaceErrorWarning = Flag(values.namespaceErrorWarning);
    OutputEncoding = values.outputEncoding;
    OutputStyle = values.outputStyle;
    DisplayFontName = values.fontName;
    DisplayFontSize = values.fontSize;
    DisplayFontWeight = values.fontWeight;
    DisplayTextAlign = values.textAlign;
    DisplayLeftMargin = values.leftMargin;
    DisplayRightMargin = values.rightMargin;
    DisplayForeColor = values.foreColor;
    DisplayBackColor = values.backColor;
    TagColor = values.tagColor;
    AttrNameColor = values.attrNameColor;
    AttrValColor = values.attrValColor;
    TagFontWeight = values.tagFontWeight;
    NodeShift = PixelNumber(values.nodeShift).value_or(NodeShift);
    TagHighlighting = Flag(values.tagHighlighting);
    SoundsOn = Flag(values.sounds);
    ShowNbsp = Flag(values.showNbsp);
    CommandLineInfo = Flag(values.commandLineInfo);
    PreviewOnChange = Flag(values.previewOnChange);
}

DisplayValues PreviewDisplayValues(const SettingsValues& values)
{
    DisplayValues display;
    display.fontName = StyleText(values.fontName);
    display.fontSize = StyleText(values.fontSize);
    display.fontWeight = StyleText(values.fontWeight);
    display.textAlign = StyleText(values.textAlign);
    display.leftMargin = StyleText(values.leftMargin);
    display.rightMargin = StyleText(values.rightMargin);
    display.foreColor = StyleText(values.foreColor);
    display.backColor = StyleText(values.backColor);
    display.nodeShift = PixelNumber(values.nodeShift).value_or(NodeShift);
    display.tagColor = StyleText(values.tagColor);
    display.attrNameColor = StyleText(values.attrNameColor);
    display.attrValColor = StyleText(values.attrValColor);
    display.tagFontWeight = StyleText(values.tagFontWeight);
    display.tagHighlighting = values.tagHighlighting;
    return display;
}

std::optional<int> PixelNumber(QStringView text)
{
    using Limits = std::numeric_limits<int16_t>;
    QString number = text.toString();
    number.remove("px"_L1, Qt::CaseInsensitive);
    bool isNumber = false;
    const double value = std::nearbyint(number.trimmed().toDouble(&isNumber));
    if (!isNumber || !(value >= Limits::min() && value <= Limits::max()))
        return std::nullopt;
    return int(value);
}

int LeftMarginPx()
{
    return PixelNumber(DisplayLeftMargin).value_or(0);
}

} // namespace vmk
