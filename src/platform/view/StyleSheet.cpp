#include "StyleSheet.h"

#include <QFont>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr double PixelsPerInch = 96;
/// Font sizes 1 to 7 of a FONT tag, in pixels. The first six are also the names x-small to xx-large.
constexpr std::array<double, 7> FontTagSizes = {10, 13, 16, 18, 24, 32, 48};
constexpr int DefaultFontTagSize = 3;
/// One step of "larger", "smaller", BIG and SMALL.
constexpr double SizeStep = 1.2;

struct HeadingLook
{
    double size;
    double margin;
};
/// The font size of H1 to H6 in ems of the context, and the vertical margins in ems of their own size.
constexpr std::array<HeadingLook, 6> HeadingLooks
    = {{{2, 0.67}, {1.5, 0.83}, {1.17, 1}, {1, 1.33}, {0.83, 1.67}, {0.67, 2.33}}};

template <typename T>
void override(std::optional<T>& target, const std::optional<T>& later)
{
    if (later)
        target = later;
}

std::optional<Qt::Alignment> ParseAlign(QStringView text)
{
    if (text == u"left")
        return Qt::AlignLeft;
    if (text == u"center" || text == u"middle")
        return Qt::AlignHCenter;
    if (text == u"right")
        return Qt::AlignRight;
    if (text == u"justify")
        return Qt::AlignJustify;
    return std::nullopt;
}

std::optional<int> ParseWeight(QStringView text)
{
    if (text == u"bold" || text == u"bolder")
        return QFont::Bold;
    if (text == u"normal" || text == u"lighter")
        return QFont::Normal;
    bool ok = false;
    const int weight = text.toInt(&ok);
    return ok && weight >= 1 && weight <= 1000 ? std::optional(weight) : std::nullopt;
}

std::optional<StyleLength> ParseFontSize(QStringView text)
{
    static constexpr std::array Names
        = {u"xx-small", u"x-small", u"small", u"medium", u"large", u"x-large", u"xx-large"};
    static constexpr std::array<double, Names.size()> Sizes = {9, 10, 13, 16, 18, 24, 32};
    for (size_t i = 0; i < Names.size(); ++i) {
        if (text == QStringView(Names[i]))
            return StyleLength{Sizes[i]};
    }
    if (text == u"larger")
        return StyleLength{SizeStep, true};
    if (text == u"smaller")
        return StyleLength{1 / SizeStep, true};
    const std::optional<StyleLength> length = ParseLength(text);
    return length && length->value > 0 ? length : std::nullopt;
}

/// The `size` attribute of a FONT tag: 1 to 7, or a step from the default.
std::optional<StyleLength> ParseFontTagSize(QStringView text)
{
    bool ok = false;
    int size = text.toInt(&ok);
    if (!ok)
        return std::nullopt;
    if (text.startsWith(u'+') || text.startsWith(u'-'))
        size += DefaultFontTagSize;
    return StyleLength{FontTagSizes[std::clamp(size, 1, 7) - 1]};
}

QStringList ParseFamilies(QStringView text)
{
    QStringList families;
    for (QStringView family : text.split(u',')) {
        family = family.trimmed();
        if (family.size() > 1 && (family.front() == u'"' || family.front() == u'\''))
            family = family.sliced(1, family.size() - 2).trimmed();
        if (!family.isEmpty())
            families.append(family.toString());
    }
    return families;
}

/// `margin`: one to four lengths, clockwise from the top.
void ParseMargins(QStringView text, TagStyle& style)
{
    std::vector<StyleLength> lengths;
    for (const QStringView part : text.split(u' ', Qt::SkipEmptyParts)) {
        if (const auto length = ParseLength(part))
            lengths.push_back(*length);
    }
    if (lengths.empty() || lengths.size() > 4)
        return;
    style.marginTop = lengths[0];
    style.marginRight = lengths[lengths.size() > 1 ? 1 : 0];
    style.marginBottom = lengths[lengths.size() > 2 ? 2 : 0];
    style.marginLeft = lengths.size() > 3 ? lengths[3] : *style.marginRight;
}

/// `font`: style and weight, then the size, then the families.
void ParseFont(QStringView text, TagStyle& style)
{
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype space = text.indexOf(u' ', at);
        const qsizetype end = space < 0 ? text.size() : space;
        const QString word = text.sliced(at, end - at).toString().toLower();
        at = end + 1;
        if (word == u"italic" || word == u"oblique") {
            style.italic = true;
        } else if (const auto weight = ParseWeight(word)) {
            style.weight = weight;
        } else if (const auto size = ParseFontSize(word.section(u'/', 0, 0))) {
            style.fontSize = size;
            style.families = ParseFamilies(text.mid(at));
            return;
        }
    }
}

void ApplyDeclaration(const QString& property, QStringView value, TagStyle& style)
{
    const QString lower = value.toString().toLower();
    if (property == u"color")
        override(style.color, ParseColor(lower));
    else if (property == u"background-color" || property == u"background")
        override(style.background, ParseColor(lower));
    else if (property == u"font-family")
        style.families = ParseFamilies(value);
    else if (property == u"font-size")
        override(style.fontSize, ParseFontSize(lower));
    else if (property == u"font-weight")
        override(style.weight, ParseWeight(lower));
    else if (property == u"font-style")
        style.italic = lower == u"italic" || lower == u"oblique";
    else if (property == u"font")
        ParseFont(value, style);
    else if (property == u"text-decoration") {
        style.underline = lower.contains(u"underline");
        style.strikeOut = lower.contains(u"line-through");
    } else if (property == u"text-align")
        override(style.align, ParseAlign(lower));
    else if (property == u"margin")
        ParseMargins(lower, style);
    else if (property == u"margin-left")
        override(style.marginLeft, ParseLength(lower));
    else if (property == u"margin-right")
        override(style.marginRight, ParseLength(lower));
    else if (property == u"margin-top")
        override(style.marginTop, ParseLength(lower));
    else if (property == u"margin-bottom")
        override(style.marginBottom, ParseLength(lower));
}

/// The default look of an element.
TagStyle ElementStyle(const QString& name)
{
    TagStyle style;
    if (name == u"b" || name == u"strong" || name == u"th") {
        style.weight = QFont::Bold;
    } else if (name == u"i" || name == u"em" || name == u"cite" || name == u"var") {
        style.italic = true;
    } else if (name == u"u" || name == u"ins") {
        style.underline = true;
    } else if (name == u"s" || name == u"strike" || name == u"del") {
        style.strikeOut = true;
    } else if (name == u"big") {
        style.fontSize = StyleLength{SizeStep, true};
    } else if (name == u"small") {
        style.fontSize = StyleLength{1 / SizeStep, true};
    } else if (name == u"tt" || name == u"code" || name == u"pre" || name == u"kbd") {
        style.families = {u"monospace"_s};
        style.fontSize = StyleLength{13};
    } else if (name == u"center") {
        style.align = Qt::AlignHCenter;
    } else if (name == u"p") {
        style.marginTop = style.marginBottom = StyleLength{1, true};
    } else if (name == u"li" || name == u"blockquote") {
        style.marginLeft = StyleLength{40};
    } else if (name.size() == 2 && name[0] == u'h' && name[1] >= u'1' && name[1] <= u'6') {
        const HeadingLook& look = HeadingLooks[name[1].unicode() - u'1'];
        style.weight = QFont::Bold;
        style.fontSize = StyleLength{look.size, true};
        style.marginTop = style.marginBottom = StyleLength{look.margin, true};
    }
    return style;
}

/// Applies the attributes of older pages: `color`, `face`, `size`, `align`, the body's colours and margins.
void ApplyAttributes(const Tag& tag, TagStyle& style)
{
    override(style.color, ParseColor(tag.value(u"text")));
    override(style.color, ParseColor(tag.value(u"color")));
    override(style.background, ParseColor(tag.value(u"bgcolor")));
    if (tag.name == u"FONT") {
        style.families = ParseFamilies(tag.value(u"face"));
        override(style.fontSize, ParseFontTagSize(tag.value(u"size")));
    }
    override(style.align, ParseAlign(tag.value(u"align").toLower()));
    override(style.marginLeft, ParseLength(tag.value(u"leftmargin")));
    override(style.marginRight, ParseLength(tag.value(u"rightmargin")));
    override(style.marginTop, ParseLength(tag.value(u"topmargin")));
    override(style.marginBottom, ParseLength(tag.value(u"bottommargin")));
}

} // namespace

void TagStyle::apply(const TagStyle& later)
{
    override(color, later.color);
    override(background, later.background);
    if (!later.families.isEmpty())
        families = later.families;
    override(fontSize, later.fontSize);
    override(weight, later.weight);
    override(italic, later.italic);
    underline = underline || later.underline;
    strikeOut = strikeOut || later.strikeOut;
    override(align, later.align);
    override(marginLeft, later.marginLeft);
    override(marginRight, later.marginRight);
    override(marginTop, later.marginTop);
    override(marginBottom, later.marginBottom);
}

void StyleSheet::parse(QStringView css)
{
    qsizetype at = 0;
    for (;;) {
        const qsizetype open = css.indexOf(u'{', at);
        if (open < 0)
            return;
        const qsizetype found = css.indexOf(u'}', open);
        const qsizetype close = found < 0 ? css.size() : found;
        const TagStyle style = ParseDeclarations(css.sliced(open + 1, close - open - 1));
        for (const QStringView part : css.sliced(at, open - at).split(u',')) {
            const QString selector = part.trimmed().toString().toLower();
            const qsizetype mark = std::max(selector.indexOf(u'.'), selector.indexOf(u'#'));
            Rule rule{selector.left(mark < 0 ? selector.size() : mark), {}, {}, style};
            if (mark >= 0)
                (selector[mark] == u'.' ? rule.className : rule.id) = selector.sliced(mark + 1);
            rules.push_back(std::move(rule));
        }
        at = std::min(close + 1, css.size());
    }
}

TagStyle StyleSheet::styleOf(const Tag& tag) const
{
    const QString name = tag.name.toLower();
    const QStringList classes = tag.className.toLower().split(u' ', Qt::SkipEmptyParts);
    const QString id = tag.id.toLower();
    TagStyle style = ElementStyle(name);
    ApplyAttributes(tag, style);
    for (const Rule& rule : rules) {
        const bool fits = (rule.element.isEmpty() || rule.element == u"*" || rule.element == name)
            && (rule.className.isEmpty() || classes.contains(rule.className))
            && (rule.id.isEmpty() || rule.id == id);
        if (fits)
            style.apply(rule.style);
    }
    style.apply(ParseDeclarations(tag.style));
    return style;
}

TagStyle ParseDeclarations(QStringView css)
{
    TagStyle style;
    for (const QStringView declaration : css.split(u';')) {
        const qsizetype colon = declaration.indexOf(u':');
        if (colon >= 0)
            ApplyDeclaration(declaration.left(colon).trimmed().toString().toLower(),
                             declaration.sliced(colon + 1).trimmed(), style);
    }
    return style;
}

std::optional<QColor> ParseColor(QStringView text)
{
    text = text.trimmed();
    if (text.startsWith(u"rgb(", Qt::CaseInsensitive) && text.endsWith(u')')) {
        const QList<QStringView> parts = text.sliced(4, text.size() - 5).split(u',');
        if (parts.size() != 3)
            return std::nullopt;
        const auto channel = [&parts](int i) { return std::clamp(parts[i].trimmed().toInt(), 0, 255); };
        return QColor(channel(0), channel(1), channel(2));
    }
    QColor color(text);
    if (!color.isValid() && text.size() == 6)
        color = QColor(u'#' + text.toString());
    // Transparent text would be invisible.
    const bool isOpaque = color.isValid() && color.alpha() == 255;
    return isOpaque ? std::optional(color) : std::nullopt;
}

std::optional<StyleLength> ParseLength(QStringView text)
{
    text = text.trimmed();
    qsizetype digits = 0;
    while (digits < text.size() && (text[digits].isDigit() || u"+-."_s.contains(text[digits])))
        ++digits;
    bool ok = false;
    const double number = text.left(digits).toDouble(&ok);
    if (!ok)
        return std::nullopt;
    const QString unit = text.sliced(digits).trimmed().toString().toLower();
    if (unit.isEmpty() || unit == u"px")
        return StyleLength{number};
    if (unit == u"pt")
        return StyleLength{number * PixelsPerInch / 72};
    if (unit == u"pc")
        return StyleLength{number * PixelsPerInch / 6};
    if (unit == u"in")
        return StyleLength{number * PixelsPerInch};
    if (unit == u"cm")
        return StyleLength{number * PixelsPerInch / 2.54};
    if (unit == u"mm")
        return StyleLength{number * PixelsPerInch / 25.4};
    if (unit == u"em")
        return StyleLength{number, true};
    if (unit == u"ex")
        return StyleLength{number / 2, true};
    if (unit == u"%")
        return StyleLength{number / 100, true};
    return std::nullopt;
}

} // namespace vmk
