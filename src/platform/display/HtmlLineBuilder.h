#pragma once

#include "DisplayLines.h"
#include "HtmlTagFacts.h"

#include <QStringView>

#include <cstddef>
#include <string>
#include <vector>

namespace vmk {

/// The structure of HTML: makes lines of tags, text and white space in their order of occurrence. The steps
/// of a tag do not depend on the length of its attributes or on the size of the text.
class HtmlLineBuilder
{
public:
    HtmlLineBuilder(TagTable& tagTable, Spacing spacingRule)
        : tags(tagTable)
        , spacing(spacingRule)
        , preName(tagTable.intern(u"PRE", {}))
    {
    }

    // ---- tags

    /// \param facts  of an in-line element or a block; other kinds are ignored
    void startTag(const TagFacts& facts);
    void endTag(const TagFacts& facts);
    /// Handles `BR`, or a line end in preformatted text.
    void lineBreak();
    /// Ends all open elements as if their end tags followed.
    void closeAll();

    // ---- text

    /// Appends text without white space that collapses.
    void append(const char16_t* units, std::size_t count)
    {
        openLine();
        text.append(units, count);
    }
    void put(char32_t c)
    {
        openLine();
        if (c < 0x10000) {
            text.push_back(char16_t(c));
        } else {
            text.push_back(QChar::highSurrogate(c));
            text.push_back(QChar::lowSurrogate(c));
        }
    }
    /// Appends a single blank between two words; returns false if it needs the rules of `putSpace`.
    [[nodiscard]] bool putLoneBlank()
    {
        if (!lineOpen || endsCollapsible || text.empty() || markedInlines < inlines.size())
            return false;
        text.push_back(u' ');
        endsCollapsible = spacing == Spacing::Collapse && !inPre();
        return true;
    }
    void putSpace(QStringView run, bool collapsible);

    // ---- state

    [[nodiscard]] bool inPre() const { return !blocks.empty() && blocks.back().name == preName; }
    /// True before the first line and the first block.
    [[nodiscard]] bool isInFront() const { return lines.empty() && !lineOpen && blocks.empty(); }
    /// Removes in-line elements and white space before the page.
    void dropFront();
    /// The size of the lines so far in characters of HTML, in which each line repeats the tags around it,
    /// with an addition for each element. A small text can have large lines.
    [[nodiscard]] std::size_t cost() const { return totalCost; }
    /// The part of `cost` of one element.
    [[nodiscard]] static std::size_t costOf(const Tag& tag);

    /// Ends the last line and returns all lines.
    /// \param openEnded  set to true if the last line is not terminated
    [[nodiscard]] std::vector<LinePtr> finish(bool& openEnded);

private:
    struct OpenBlock
    {
        TagId tag = NoTag;
        TagId name = NoTag;
        ElementKind kind = ElementKind::Block;
        bool filled = false; ///< A line or a block inside it exists already.
        bool withoutId = false; ///< The identifier was removed from `tag`.
        std::size_t cost = 0;
        std::size_t inlineDepth = 0; ///< In-line elements open around it.
    };
    struct OpenInline
    {
        TagId tag = NoTag;
        TagId name = NoTag;
        std::size_t cost = 0;
        bool everMarked = false; ///< Its start tag is in a line already.
    };

    void startBlock(const TagFacts& facts);
    void closeBlock();
    void startInline(const TagFacts& facts);
    void endInline(TagId name);
    void openLine()
    {
        if (!lineOpen || markedInlines < inlines.size())
            markOpenElements();
        endsCollapsible = false;
    }
    void beginLine();
    void markOpenElements();
    void endLine();
    [[nodiscard]] TagId blockOfLine();
    [[nodiscard]] TagId plainBlock(TagId container);
    void addLine(TagId block);
    [[nodiscard]] LinePtr& similarLine(TagId block, QStringView written);

    TagTable& tags;
    const Spacing spacing;
    const TagId preName;

    std::vector<LinePtr> lines;
    LinePtr lastPlainLine; ///< The last line without marks.
    SharedMarks knownMarks;
    std::vector<LinePtr> shortLines; ///< Very short ones, each at a position computed from its content.
    std::vector<OpenBlock> blocks;
    std::vector<OpenInline> inlines;
    /// The number of elements of `inlines`, from the bottom, that are in the current line.
    std::size_t markedInlines = 0;
    std::size_t totalCost = 0;

    bool lineOpen = false;
    bool endsCollapsible = false; ///< The text ends with a blank that collapses with the following one.
    std::u16string text;
    std::vector<Mark> marks;
    std::u16string heldSpace; ///< White space that belongs to the next line, if one begins.
    bool heldCollapsible = false;
};

} // namespace vmk
