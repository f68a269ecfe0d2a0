#include "DisplayValuesOfSettings.h"

#include "SettingsVariables.h"

namespace vmk {

DisplayValues DisplayValuesOfSettings()
{
    DisplayValues values;
    values.fontName = DisplayFontName.toStdString();
    values.fontSize = DisplayFontSize.toStdString();
    values.fontWeight = DisplayFontWeight.toStdString();
    values.textAlign = DisplayTextAlign.toStdString();
    values.leftMargin = DisplayLeftMargin.toStdString();
    values.rightMargin = DisplayRightMargin.toStdString();
    values.foreColor = DisplayForeColor.toStdString();
    values.backColor = DisplayBackColor.toStdString();
    values.nodeShift = NodeShift;
    values.tagColor = TagColor.toStdString();
    values.attrNameColor = AttrNameColor.toStdString();
    values.attrValColor = AttrValColor.toStdString();
    values.tagFontWeight = TagFontWeight.toStdString();
    values.tagHighlighting = TagHighlighting == 1;
    values.showNbsp = ShowNbsp == 1;
    return values;
}

} // namespace vmk
