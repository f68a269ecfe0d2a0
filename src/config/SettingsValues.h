#pragma once

#include "DisplayValues.h"

#include <QString>
#include <QStringView>

#include <optional>

/// The values in the controls of the settings dialog, and their conversion to and from the shared variables.
namespace vmk {

struct SettingsValues
{
    QString inputEncoding;
    bool namespaceErrorWarning = false;
    QString outputEncoding;
    QString outputStyle;
    QString fontName;
    QString fontSize;
    QString fontWeight;
    QString textAlign;
    QString leftMargin;
    QString rightMargin;
    QString foreColor;
    QString backColor;
    QString tagColor;
    QString attrNameColor;
    QString attrValColor;
    QString tagFontWeight;
    /// Pixels, as text.
    QString nodeShift;
    bool tagHighlighting = false;
    bool sounds = false;
    bool showNbsp = false;
    bool commandLineInfo = false;
    bool previewOnChange = false;

    friend bool operator==(const SettingsValues&, const SettingsValues&) = default;
};

/// Returns the current settings.
[[nodiscard]] SettingsValues ValuesOfSettings();

/// Assigns the values to the shared variables; texts are not changed. A `nodeShift` that is not a number
/// leaves `NodeShift` unchanged.
void TakeSettings(const SettingsValues& values);

/// Returns the display values of a preview with these settings.
[[nodiscard]] DisplayValues PreviewDisplayValues(const SettingsValues& values);

/// Parses a number of pixels such as "5", "5px" or "-2 PX" and rounds it. Returns nothing if it does not
/// fit into 16 bits or the text is not a number.
[[nodiscard]] std::optional<int> PixelNumber(QStringView text);

/// Returns `DisplayLeftMargin` as a number of pixels; 0 if it is not a number.
[[nodiscard]] int LeftMarginPx();

} // namespace vmk
