#pragma once

#include "TagTable.h"

#include <QColor>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <Qt>

#include <optional>
#include <vector>

namespace vmk {

/// A length in a page's style: pixels (1/96 inch), or a multiple of the font size of the context.
struct StyleLength
{
    double value = 0;
    bool relative = false;

    /// Returns the length in pixels; `fontSize` is the font size for relative lengths, in pixels.
    [[nodiscard]] double toPixels(double fontSize) const { return relative ? value * fontSize : value; }
};

/// The properties that one tag or one rule sets. Unset properties are inherited.
struct TagStyle
{
    std::optional<QColor> color;
    std::optional<QColor> background;
    QStringList families;
    std::optional<StyleLength> fontSize;
    /// 1 to 1000, as in `QFont`.
    std::optional<int> weight;
    std::optional<bool> italic;
    bool underline = false;
    bool strikeOut = false;
    std::optional<Qt::Alignment> align;
    std::optional<StyleLength> marginLeft, marginRight, marginTop, marginBottom;

    /// Merges a later style into this one: properties set in `later` win.
    void apply(const TagStyle& later);
};

/// The style rules in a page's head: selectors `element`, `.class`, `element.class` and `#id`, in lists.
class StyleSheet
{
public:
    /// Parses the text between `<STYLE>` and `</STYLE>`. Unknown rules and properties are ignored.
    void parse(QStringView css);

    /// Returns the look that a start tag sets: the element's own look, then attributes such as `color` and
    /// `align`, then the matching rules of the sheet, then the inline style.
    [[nodiscard]] TagStyle styleOf(const Tag& tag) const;

private:
    struct Rule
    {
        /// Each in lower case, empty for any.
        QString element, className, id;
        TagStyle style;
    };
    std::vector<Rule> rules;
};

/// Parses a list of declarations such as "color:red; font-size:12pt". Unknown properties are ignored.
[[nodiscard]] TagStyle ParseDeclarations(QStringView css);

/// Parses a colour: a name, `#rgb`, `#rrggbb`, `rgb(r,g,b)`, or six hexadecimal digits.
[[nodiscard]] std::optional<QColor> ParseColor(QStringView text);

/// Parses a length with or without unit (px, pt, pc, in, cm, mm, em, ex, %); without a unit, in pixels.
[[nodiscard]] std::optional<StyleLength> ParseLength(QStringView text);

} // namespace vmk
