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

/// A length of a page's style: pixels (1/96 inch), or a multiple of the font size around it.
struct StyleLength
{
    double value = 0;
    bool relative = false;

    /// Pixels, given the font size in pixels that a relative length goes by.
    [[nodiscard]] double toPixels(double fontSize) const { return relative ? value * fontSize : value; }
};

/// What one tag, or one rule, says about the look. Everything that it leaves open is inherited.
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

    /// Lays the later style over this one: what `later` says wins.
    void apply(const TagStyle& later);
};

/// The style rules of a page's head: selectors `element`, `.class`, `element.class` and `#id`, in lists.
class StyleSheet
{
public:
    /// Reads the text between `<STYLE>` and `</STYLE>`. What it does not know is passed over.
    void parse(QStringView css);

    /// The look that a start tag gives: the element's own look, then the attributes such as `color` and
    /// `align`, then the rules of the sheet that fit, then its inline style.
    [[nodiscard]] TagStyle styleOf(const Tag& tag) const;

private:
    struct Rule
    {
        /// Each lower case, empty for any.
        QString element, className, id;
        TagStyle style;
    };
    std::vector<Rule> rules;
};

/// Reads a list of declarations such as "color:red; font-size:12pt". What it does not know is passed over.
[[nodiscard]] TagStyle ParseDeclarations(QStringView css);

/// A colour by name, `#rgb`, `#rrggbb`, `rgb(r,g,b)`, or six bare hexadecimal digits.
[[nodiscard]] std::optional<QColor> ParseColor(QStringView text);

/// A length with or without unit (px, pt, pc, in, cm, mm, em, ex, %); a bare number counts pixels.
[[nodiscard]] std::optional<StyleLength> ParseLength(QStringView text);

} // namespace vmk
