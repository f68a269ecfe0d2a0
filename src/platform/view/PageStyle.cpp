#include "PageStyle.h"

#include <QFontMetricsF>
#include <QGlyphRun>

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The margins of a page whose body tag sets none.
constexpr double DefaultPageMargin = 8;
/// Pixels. Larger letters would make the display unusable.
constexpr double LargestFont = 144;

QFont FontOf(const TextLook& look, double dotsPerInch)
{
    QFont font;
    QStringList families = look.families;
    for (QString& family : families) {
        // Generic names are not font names; the style hint selects a font.
        const QString lower = family.toLower();
        if (lower == u"monospace")
            font.setStyleHint(QFont::Monospace);
        else if (lower == u"sans-serif")
            font.setStyleHint(QFont::SansSerif);
        else if (lower == u"serif")
            font.setStyleHint(QFont::Serif);
    }
    if (!families.isEmpty())
        font.setFamilies(families);
    font.setPointSizeF(std::max(1.0, look.size) * 72 / dotsPerInch);
    font.setWeight(QFont::Weight(look.weight));
    font.setItalic(look.italic);
    font.setUnderline(look.underline);
    font.setStrikeOut(look.strikeOut);
    return font;
}

/// The contents of all `<STYLE>` elements.
QString StyleText(const QString& head)
{
    QString css;
    for (qsizetype at = 0;;) {
        const qsizetype tag = head.indexOf(u"<style"_s, at, Qt::CaseInsensitive);
        const qsizetype open = tag < 0 ? -1 : head.indexOf(u'>', tag);
        if (open < 0)
            return css;
        const qsizetype found = head.indexOf(u"</style"_s, open, Qt::CaseInsensitive);
        const qsizetype close = found < 0 ? head.size() : found;
        css += QStringView(head).sliced(open + 1, close - open - 1);
        at = close;
    }
}

/// Whether the toolkit draws the accent of a Cyrillic letter far above it: for fonts without positions of
/// accents over these letters, it computes one with the wrong sign.
bool MisplacesAccents(const QFont& font)
{
    QTextLayout sample(u"\u0435\u0301"_s, font);
    sample.beginLayout();
    sample.createLine().setLineWidth(1000);
    sample.endLayout();
    QList<qreal> heights;
    for (const QGlyphRun& run : sample.glyphRuns()) {
        for (const QPointF& place : run.positions())
            heights.append(place.y());
    }
    const auto [highest, lowest] = std::minmax_element(heights.begin(), heights.end());
    return !heights.isEmpty() && *lowest - *highest > QFontMetricsF(font).xHeight();
}

} // namespace

CharWidths::CharWidths(const QFont& measuredFont)
    : font(measuredFont)
{
    QTextLayout sample(u"x"_s, font);
    sample.beginLayout();
    QTextLine row = sample.createLine();
    row.setLeadingIncluded(true);
    row.setLineWidth(1000);
    height = int(std::ceil(row.height()));
    sample.endLayout();
}

float CharWidths::measure(QChar c)
{
    std::unique_ptr<Page>& page = pages[c.unicode() >> 8];
    if (!page)
        page = std::make_unique<Page>(Page{});
    const QFontMetricsF metrics(font);
    // Half of a pair has no width. The minimum is above 0, because 0 means not measured.
    const double width = c.isSurrogate() ? metrics.horizontalAdvance(u'M') / 2 : metrics.horizontalAdvance(c);
    return (*page)[c.unicode() & 0xff] = std::max(float(width), 0.001F);
}

PageStyle::PageStyle() = default;
PageStyle::~PageStyle() = default;

void PageStyle::load(const DisplayDocument& newDocument, double newDotsPerInch)
{
    document = &newDocument;
    dotsPerInch = newDotsPerInch;
    looks.clear();
    fonts.clear();
    widthTables.clear();
    tagStyles.clear();
    blocks.clear();
    insides.clear();
    charFormats.clear();
    sheet = {};
    sheet.parse(StyleText(document->head()));

    const TagId bodyTag = document->bodyTag();
    const TagStyle body = bodyTag == NoTag ? TagStyle{} : sheet.styleOf(document->tags()[bodyTag]);
    TextLook look;
    look.families = {u"Times New Roman"_s, u"serif"_s};
    look = lookWithin(look, body);
    pageBackground = look.background.isValid() ? look.background : QColor(Qt::white);
    look.background = QColor();
    const auto margin = [&look](const std::optional<StyleLength>& length) {
        return length ? length->toPixels(look.size) : DefaultPageMargin;
    };
    pageTop = std::max(0.0, margin(body.marginTop));
    pageBottom = std::max(0.0, margin(body.marginBottom));
    page = {};
    page.text = intern(look);
    page.marginLeft = margin(body.marginLeft);
    page.marginRight = margin(body.marginRight);
    page.align = body.align.value_or(Qt::AlignLeft);
}

BlockLook PageStyle::block(TagId tag)
{
    if (const auto found = blocks.constFind(tag); found != blocks.constEnd())
        return *found;
    BlockLook look = page;
    if (tag != NoTag) {
        const TagStyle& style = tagStyle(tag);
        const TextLook text = lookWithin(looks[size_t(page.text)], style);
        look.text = intern(text);
        const auto margin = [&text](const std::optional<StyleLength>& length) {
            return length ? length->toPixels(text.size) : 0.0;
        };
        look.marginLeft += margin(style.marginLeft);
        look.marginRight += margin(style.marginRight);
        look.marginTop = std::max(0.0, margin(style.marginTop));
        look.marginBottom = std::max(0.0, margin(style.marginBottom));
        look.align = style.align.value_or(page.align);
    }
    return *blocks.insert(tag, look);
}

LookId PageStyle::inside(LookId outer, TagId tag)
{
    const std::pair key(outer, tag);
    if (const auto found = insides.constFind(key); found != insides.constEnd())
        return *found;
    const LookId id = intern(lookWithin(looks[size_t(outer)], tagStyle(tag)));
    insides.insert(key, id);
    return id;
}

CharWidths& PageStyle::widths(LookId id)
{
    std::shared_ptr<CharWidths>& table = widthTables[size_t(id)];
    for (size_t other = 0; !table && other < widthTables.size(); ++other) {
        if (widthTables[other] && fonts[other] == fonts[size_t(id)])
            table = widthTables[other];
    }
    if (!table)
        table = std::make_shared<CharWidths>(fonts[size_t(id)]);
    return *table;
}

OpenElementsOfLine::OpenElementsOfLine(const Line& line)
    : marks(line.marks)
{
    constexpr std::size_t Distance = 512;
    OpenElements open;
    for (; open.mark < marks.size(); ++open.mark) {
        if (open.mark % Distance == 0)
            points.push_back(open);
        if (marks[open.mark].open)
            open.tags.push_back(marks[open.mark].tag);
        else if (!open.tags.empty())
            open.tags.pop_back();
    }
    if (points.empty())
        points.emplace_back();
}

const OpenElements& OpenElementsOfLine::before(int offset) const
{
    const auto after = std::partition_point(points.begin() + 1, points.end(), [&](const OpenElements& point) {
        return marks[point.mark - 1].pos <= offset;
    });
    return *std::prev(after);
}

QList<QTextLayout::FormatRange> PageStyle::formats(const Line& line, int from, int length,
                                                   const OpenElements& start)
{
    QList<QTextLayout::FormatRange> ranges;
    const LookId blockLook = block(line.block).text;
    const auto take = [&](int begin, int end, LookId look) {
        if (look != blockLook)
            ranges.append({begin - from, end - begin, format(look, blockLook)});
    };
    forEachRun(line, from, from + length, take, start);
    separateMarks(line.text, from, length, fonts[size_t(blockLook)], ranges);
    return ranges;
}

/// Gives each accent a format of its own where the toolkit would place it wrongly: it is then drawn with its
/// own bearings, over the letter before it.
void PageStyle::separateMarks(const QString& text, int from, int length, const QFont& font,
                              QList<QTextLayout::FormatRange>& ranges)
{
    for (int i = from; i < from + length; ++i) {
        if (text[i] < QChar(0x300) || text[i] > QChar(0x36f))
            continue;
        const QString key = font.key();
        if (!misplacesAccents.contains(key))
            misplacesAccents.insert(key, MisplacesAccents(font));
        if (!misplacesAccents.value(key))
            return;
        QTextCharFormat separate;
        separate.setProperty(QTextFormat::UserProperty, true);
        ranges.append({i - from, 1, separate});
    }
}

LookId PageStyle::intern(const TextLook& look)
{
    const auto found = std::find(looks.begin(), looks.end(), look);
    if (found != looks.end())
        return LookId(found - looks.begin());
    looks.push_back(look);
    fonts.push_back(FontOf(look, dotsPerInch));
    widthTables.emplace_back();
    return LookId(looks.size()) - 1;
}

const TagStyle& PageStyle::tagStyle(TagId tag)
{
    const auto found = tagStyles.constFind(tag);
    return found != tagStyles.constEnd() ? *found
                                         : *tagStyles.insert(tag, sheet.styleOf(document->tags()[tag]));
}

TextLook PageStyle::lookWithin(const TextLook& outer, const TagStyle& style) const
{
    TextLook look = outer;
    look.color = style.color.value_or(outer.color);
    look.background = style.background.value_or(outer.background);
    if (!style.families.isEmpty())
        look.families = style.families;
    if (style.fontSize)
        look.size = std::min(style.fontSize->toPixels(outer.size), LargestFont);
    look.weight = style.weight.value_or(outer.weight);
    look.italic = style.italic.value_or(outer.italic);
    look.underline = outer.underline || style.underline;
    look.strikeOut = outer.strikeOut || style.strikeOut;
    return look;
}

QTextCharFormat PageStyle::format(LookId id, LookId blockId)
{
    const std::pair key(id, blockId);
    if (const auto found = charFormats.constFind(key); found != charFormats.constEnd())
        return *found;
    const TextLook& look = looks[size_t(id)];
    QTextCharFormat format;
    // A change of colour must not split the shaping of a word, so the font is set only where it differs.
    if (fonts[size_t(id)] != fonts[size_t(blockId)])
        format.setFont(fonts[size_t(id)]);
    format.setForeground(look.color);
    if (look.background.isValid())
        format.setBackground(look.background);
    charFormats.insert(key, format);
    return format;
}

} // namespace vmk
