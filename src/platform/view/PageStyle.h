#pragma once

#include "DisplayDocument.h"
#include "StyleSheet.h"

#include <QFont>
#include <QHash>
#include <QTextLayout>

#include <array>
#include <memory>
#include <vector>

namespace vmk {

/// Number of an interned look of characters; see `PageStyle`.
using LookId = int;

/// How a piece of text looks, with everything inherited filled in.
struct TextLook
{
    QStringList families;
    /// Pixels of 1/96 inch.
    double size = 16;
    int weight = QFont::Normal;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QColor color = Qt::black;
    /// Invalid where the page shows through.
    QColor background;

    friend bool operator==(const TextLook&, const TextLook&) = default;
};

/// How a block stands on the page: pixels, all margins from the page's edges included.
struct BlockLook
{
    LookId text = 0;
    double marginLeft = 0;
    double marginRight = 0;
    double marginTop = 0;
    double marginBottom = 0;
    Qt::Alignment align = Qt::AlignLeft;
};

/// Advance widths of single characters in one font, each asked once: what estimates go by.
class CharWidths
{
public:
    explicit CharWidths(const QFont& measuredFont);
    /// Pixels; half of a surrogate pair counts as a wide character.
    [[nodiscard]] float width(QChar c)
    {
        const auto& page = pages[c.unicode() >> 8];
        const float known = page ? (*page)[c.unicode() & 0xff] : 0;
        return known > 0 ? known : measure(c);
    }
    /// Pixels of one row of this font.
    [[nodiscard]] int rowHeight() const { return height; }

private:
    using Page = std::array<float, 256>;
    float measure(QChar c);

    QFont font;
    int height = 0;
    std::array<std::unique_ptr<Page>, 256> pages;
};

/// The look of a page: the style rules of its head, its body tag, and what every start tag makes of the
/// look around it. Each different combination is worked out once and has a number.
class PageStyle
{
public:
    PageStyle();
    ~PageStyle();

    /// Reads the head and the body tag of the document anew and forgets all numbers.
    /// @param dotsPerInch of the screen, which Qt's point sizes go by.
    void load(const DisplayDocument& document, double dotsPerInch);

    [[nodiscard]] const QColor& background() const { return pageBackground; }
    /// Pixels above the first line and below the last one.
    [[nodiscard]] double topMargin() const { return pageTop; }
    [[nodiscard]] double bottomMargin() const { return pageBottom; }

    [[nodiscard]] BlockLook block(TagId tag);
    /// The look inside an in-line tag, within another look.
    [[nodiscard]] LookId inside(LookId outer, TagId tag);
    [[nodiscard]] const TextLook& look(LookId id) const { return looks[size_t(id)]; }
    [[nodiscard]] const QFont& font(LookId id) const { return fonts[size_t(id)]; }
    [[nodiscard]] CharWidths& widths(LookId id);

    /// The formats of a line's text from `from` to `from + length`, offsets counted from `from`. Text that
    /// looks as its block does gets none.
    [[nodiscard]] QList<QTextLayout::FormatRange> formats(const Line& line, int from, int length);

    /// Calls `take(from, to, look)` for each run of one look, in order; runs fill the whole text.
    template <typename Take>
    void forEachRun(const Line& line, Take take)
    {
        forEachRun(line, 0, int(line.text.size()), take);
    }
    /// The same for the text between two offsets; of what stands in front only the tags are looked at.
    template <typename Take>
    void forEachRun(const Line& line, int from, int to, Take take);

private:
    LookId intern(const TextLook& look);
    [[nodiscard]] const TagStyle& tagStyle(TagId tag);
    [[nodiscard]] TextLook lookWithin(const TextLook& outer, const TagStyle& style) const;
    [[nodiscard]] QTextCharFormat format(LookId id, LookId blockId);

    const DisplayDocument* document = nullptr;
    double dotsPerInch = 96;
    StyleSheet sheet;
    QColor pageBackground = Qt::white;
    double pageTop = 0;
    double pageBottom = 0;
    BlockLook page;
    std::vector<TextLook> looks;
    std::vector<QFont> fonts;
    /// Looks that differ in colour alone share a table.
    std::vector<std::shared_ptr<CharWidths>> widthTables;
    QHash<TagId, TagStyle> tagStyles;
    QHash<TagId, BlockLook> blocks;
    QHash<std::pair<LookId, TagId>, LookId> insides;
    QHash<std::pair<LookId, LookId>, QTextCharFormat> charFormats;
    // What stands open where `forEachRun` is.
    std::vector<TagId> openTags;
    std::vector<LookId> openLooks;
};

template <typename Take>
void PageStyle::forEachRun(const Line& line, int from, int to, Take take)
{
    openTags.clear();
    auto mark = line.marks.begin();
    for (; mark != line.marks.end() && mark->pos <= from; ++mark) {
        if (mark->open)
            openTags.push_back(mark->tag);
        else if (!openTags.empty())
            openTags.pop_back();
    }
    openLooks.assign(1, block(line.block).text);
    for (const TagId tag : openTags)
        openLooks.push_back(inside(openLooks.back(), tag));

    for (; mark != line.marks.end() && mark->pos < to; ++mark) {
        if (mark->pos > from) {
            take(from, int(mark->pos), openLooks.back());
            from = mark->pos;
        }
        if (mark->open)
            openLooks.push_back(inside(openLooks.back(), mark->tag));
        else if (openLooks.size() > 1)
            openLooks.pop_back();
    }
    if (from < to)
        take(from, to, openLooks.back());
}

} // namespace vmk
