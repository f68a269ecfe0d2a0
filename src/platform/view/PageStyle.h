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

/// The number of an interned look of characters; see `PageStyle`.
using LookId = int;

/// The look of a piece of text, including all inherited properties.
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
    /// Invalid if the page is visible through the text.
    QColor background;

    friend bool operator==(const TextLook&, const TextLook&) = default;
};

/// The geometry of a block on the page, in pixels; all margins are measured from the edges of the page.
struct BlockLook
{
    LookId text = 0;
    double marginLeft = 0;
    double marginRight = 0;
    double marginTop = 0;
    double marginBottom = 0;
    Qt::Alignment align = Qt::AlignLeft;
};

/// The advance widths of single characters in one font, each measured once; used for estimates.
class CharWidths
{
public:
    explicit CharWidths(const QFont& measuredFont);
    /// In pixels; half of a surrogate pair counts as a wide character.
    [[nodiscard]] float width(QChar c)
    {
        const auto& page = pages[c.unicode() >> 8];
        const float known = page ? (*page)[c.unicode() & 0xff] : 0;
        return known > 0 ? known : measure(c);
    }
    /// The height of one row of this font in pixels.
    [[nodiscard]] int rowHeight() const { return height; }

private:
    using Page = std::array<float, 256>;
    float measure(QChar c);

    QFont font;
    int height = 0;
    std::array<std::unique_ptr<Page>, 256> pages;
};

/// The elements that are open before a mark of a line.
struct OpenElements
{
    std::size_t mark = 0; ///< The index of the mark; all marks before it are taken into account.
    std::vector<TagId> tags; ///< From the outermost to the innermost.
};

/// Finds the open elements at any offset of a line in time that does not depend on the number of its marks.
class OpenElementsOfLine
{
public:
    explicit OpenElementsOfLine(const Line& line);
    /// Returns the elements at a mark shortly before an offset: no mark before it is after the offset.
    [[nodiscard]] const OpenElements& before(int offset) const;

private:
    MarkList marks;
    std::vector<OpenElements> points; ///< At regular distances; the first one is at the first mark.
};

/// The look of a page: the style rules of its head, its body tag, and the effect of every start tag on the
/// look around it. Each distinct combination is computed once and has a number.
class PageStyle
{
public:
    PageStyle();
    ~PageStyle();

    /// Reads the head and the body tag of the document and clears all numbers.
    /// \param dotsPerInch  of the screen; the unit of Qt's point sizes
    void load(const DisplayDocument& document, double dotsPerInch);

    [[nodiscard]] const QColor& background() const { return pageBackground; }
    /// The margins above the first line and below the last one, in pixels.
    [[nodiscard]] double topMargin() const { return pageTop; }
    [[nodiscard]] double bottomMargin() const { return pageBottom; }

    [[nodiscard]] BlockLook block(TagId tag);
    /// Returns the look inside an in-line tag, within another look.
    [[nodiscard]] LookId inside(LookId outer, TagId tag);
    [[nodiscard]] const TextLook& look(LookId id) const { return looks[size_t(id)]; }
    [[nodiscard]] const QFont& font(LookId id) const { return fonts[size_t(id)]; }
    [[nodiscard]] CharWidths& widths(LookId id);

    /// Returns the formats of a line's text from `from` to `from + length`, with offsets relative to `from`.
    /// Text with the look of its block has no format.
    /// \param start  the result of `OpenElementsOfLine::before` for `from`, or of an earlier offset
    [[nodiscard]] QList<QTextLayout::FormatRange> formats(const Line& line, int from, int length,
                                                          const OpenElements& start = {});

    /// Calls `take(from, to, look)` for each run with one look, in order; the runs cover the whole text.
    template <typename Take>
    void forEachRun(const Line& line, Take take)
    {
        forEachRun(line, 0, int(line.text.size()), take);
    }
    /// The same for the text between two offsets; of the text before it, only the tags from `start` on are
    /// examined.
    template <typename Take>
    void forEachRun(const Line& line, int from, int to, Take take, const OpenElements& start = {});

private:
    LookId intern(const TextLook& look);
    [[nodiscard]] const TagStyle& tagStyle(TagId tag);
    [[nodiscard]] TextLook lookWithin(const TextLook& outer, const TagStyle& style) const;
    [[nodiscard]] QTextCharFormat format(LookId id, LookId blockId);
    void separateMarks(const QString& text, int from, int length, const QFont& font,
                       QList<QTextLayout::FormatRange>& ranges);

    const DisplayDocument* document = nullptr;
    double dotsPerInch = 96;
    StyleSheet sheet;
    QColor pageBackground = Qt::white;
    double pageTop = 0;
    double pageBottom = 0;
    BlockLook page;
    std::vector<TextLook> looks;
    std::vector<QFont> fonts;
    /// Looks that differ only in colour share a table.
    std::vector<std::shared_ptr<CharWidths>> widthTables;
    QHash<TagId, TagStyle> tagStyles;
    QHash<TagId, BlockLook> blocks;
    QHash<std::pair<LookId, TagId>, LookId> insides;
    QHash<std::pair<LookId, LookId>, QTextCharFormat> charFormats;
    /// Whether the toolkit places accents wrongly, by font.
    QHash<QString, bool> misplacesAccents;
    // The tags that are open at the current position of `forEachRun`.
    std::vector<TagId> openTags;
    std::vector<LookId> openLooks;
};

template <typename Take>
void PageStyle::forEachRun(const Line& line, int from, int to, Take take, const OpenElements& start)
{
    openTags = start.tags;
    auto mark = line.marks.begin() + start.mark;
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
