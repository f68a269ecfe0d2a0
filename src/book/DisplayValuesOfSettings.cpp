#include "DisplayValuesOfSettings.h"

#include "SettingsVariables.h"

using namespace Qt::StringLiterals;

namespace vmk {

std::string StyleText(const QString& value)
{
    constexpr char16_t FirstPrintable = 0x20;
    constexpr char16_t Delete = 0x7f;
    QString text;
    for (const QChar c : value) {
        const bool endsSomething = u"\"<>{};&"_s.contains(c);
        if (!endsSomething && c >= FirstPrintable && c != Delete)
            text += c;
    }
    return text.toStdString();
}

DisplayValues DisplayValuesOfSettings()
{
    DisplayValues values;
    values.fontName = StyleText(DisplayFontName);
    values.fontSize = StyleText(DisplayFontSize);
    values.fontWeight = StyleText(DisplayFontWeight);
    values.textAlign = StyleText(DisplayTextAlign);
    values.leftMargin = StyleText(DisplayLeftMargin);
    values.rightMargin = StyleText(DisplayRightMargin);
    values.foreColor = StyleText(DisplayForeColor);
    values.backColor = StyleText(DisplayBackColor);
    values.nodeShift = NodeShift;
    values.tagColor = StyleText(TagColor);
    values.attrNameColor = StyleText(AttrNameColor);
    values.attrValColor = StyleText(AttrValColor);
    values.tagFontWeight = StyleText(TagFontWeight);
    values.tagHighlighting = TagHighlighting == 1;
    values.showNbsp = ShowNbsp == 1;
    return values;
}

} // namespace vmk
