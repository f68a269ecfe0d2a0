#include "HtmlLineBuilder.h"

#include <algorithm>
#include <cstdint>

namespace vmk {

namespace {

/// Deeper nesting is flattened: no page needs it, and the cost of hostile input must be linear in its size.
constexpr std::size_t MaxBlockDepth = 256;
/// The maximum number of in-line elements that continue in the following lines; others end with their line.
constexpr std::size_t MaxCarriedDepth = 24;
/// The longest value of `align` that the blocks inside a block inherit. Real ones are words.
constexpr qsizetype LongestInheritedAlign = 32;

QString InheritedAlign(const Tag& tag)
{
    return tag.align.size() <= LongestInheritedAlign ? tag.align : QString();
}

} // namespace

std::size_t HtmlLineBuilder::costOf(const Tag& tag)
{
    constexpr std::size_t Element = 16; // two marks
    constexpr std::size_t Brackets = 6;
    return Element + Brackets + std::size_t(2 * tag.name.size() + tag.attributes.size());
}

// ---------------------------------------------------------------- elements

void HtmlLineBuilder::startTag(const TagFacts& facts)
{
    switch (facts.kind) {
    case ElementKind::Inline:
        return startInline(facts);
    case ElementKind::Void:
        startInline(facts);
        return endInline(facts.name);
    case ElementKind::Block:
    case ElementKind::Container:
        return startBlock(facts);
    case ElementKind::Break:
        return lineBreak();
    case ElementKind::Rule:
        startBlock(facts);
        return closeBlock();
    default:
        return;
    }
}

void HtmlLineBuilder::endTag(const TagFacts& facts)
{
    if (facts.kind == ElementKind::Inline)
        return endInline(facts.name);
    if (facts.kind != ElementKind::Block && facts.kind != ElementKind::Container)
        return;
    const auto open = std::find_if(blocks.rbegin(), blocks.rend(),
                                   [&facts](const OpenBlock& block) { return block.name == facts.name; });
    if (open == blocks.rend())
        return;
    const auto depth = std::size_t(blocks.rend() - open);
    while (blocks.size() >= depth)
        closeBlock();
}

void HtmlLineBuilder::startBlock(const TagFacts& facts)
{
    endLine();
    const QString& name = tags[facts.name].name;
    while (!blocks.empty() && EndsImplicitly(tags[blocks.back().name].name, name))
        closeBlock();
    if (blocks.size() >= MaxBlockDepth) {
        // It would contain the block that replaces it, so it is not an empty line.
        blocks.back().filled = true;
        closeBlock();
    }

    OpenBlock block{facts.tag, facts.name, facts.kind, false, false, facts.cost, inlines.size()};
    if (!blocks.empty()) {
        blocks.back().filled = true;
        const QString align = InheritedAlign(tags[blocks.back().tag]);
        if (!align.isEmpty() && tags[facts.tag].align.isEmpty())
            block.tag = tags.withAttribute(facts.tag, u"align", align);
    }
    blocks.push_back(block);
}

/// Ends the innermost block and the in-line elements opened in it.
void HtmlLineBuilder::closeBlock()
{
    const OpenBlock& block = blocks.back();
    const bool emptyInline
        = std::any_of(inlines.begin() + std::ptrdiff_t(std::min(block.inlineDepth, inlines.size())),
                      inlines.end(), [](const OpenInline& open) { return !open.everMarked; });
    if (emptyInline)
        markOpenElements();
    if (!lineOpen && !block.filled && block.kind != ElementKind::Container)
        beginLine();
    endLine();
    if (inlines.size() > block.inlineDepth)
        inlines.resize(block.inlineDepth);
    markedInlines = std::min(markedInlines, inlines.size());
    blocks.pop_back();
}

void HtmlLineBuilder::startInline(const TagFacts& facts)
{
    if (inlines.size() < MaxInlineDepth)
        inlines.push_back({facts.tag, facts.name, facts.cost, false});
}

void HtmlLineBuilder::endInline(TagId name)
{
    std::size_t i = inlines.size();
    while (i > 0 && inlines[i - 1].name != name)
        --i;
    if (i == 0)
        return;
    const std::size_t index = i - 1;
    // An element without text is kept too: it may be a field or an anchor.
    if (!inlines[index].everMarked)
        markOpenElements();
    // Elements that were opened inside and are still open continue after the end tag.
    while (markedInlines > index)
        marks.push_back(Mark::closing(int(text.size()), inlines[--markedInlines].tag));
    inlines.erase(inlines.begin() + std::ptrdiff_t(index));
    for (auto block = blocks.rbegin(); block != blocks.rend() && block->inlineDepth > index; ++block)
        --block->inlineDepth;
}

void HtmlLineBuilder::closeAll()
{
    while (!blocks.empty())
        closeBlock();
    // An empty element is content too.
    if (std::any_of(inlines.begin(), inlines.end(), [](const OpenInline& open) { return !open.everMarked; }))
        markOpenElements();
    while (markedInlines > 0)
        marks.push_back(Mark::closing(int(text.size()), inlines[--markedInlines].tag));
    inlines.clear();
}

// ---------------------------------------------------------------- white space

void HtmlLineBuilder::putSpace(QStringView run, bool collapsible)
{
    if (collapsible)
        run = u" ";
    if (run.isEmpty())
        return;
    if (!lineOpen && (collapsible || inlines.empty())) {
        // It counts only if text follows in the same line.
        heldCollapsible = heldCollapsible || collapsible;
        heldSpace.append(run.utf16(), std::size_t(run.size()));
        return;
    }
    if (collapsible && (endsCollapsible || text.empty()))
        return;
    // A blank that is kept inside an element is part of its text.
    markOpenElements();
    text.append(run.utf16(), std::size_t(run.size()));
    endsCollapsible = collapsible;
}

void HtmlLineBuilder::dropFront()
{
    inlines.clear();
    heldSpace.clear();
    heldCollapsible = false;
}

// ---------------------------------------------------------------- lines

void HtmlLineBuilder::lineBreak()
{
    if (!lineOpen)
        beginLine();
    endLine();
}

void HtmlLineBuilder::beginLine()
{
    lineOpen = true;
    if (!heldCollapsible && (spacing == Spacing::Keep || inPre()))
        text.append(heldSpace);
    heldSpace.clear();
    heldCollapsible = false;
}

/// Opens all open elements that are not in the current line yet; begins a line if necessary.
void HtmlLineBuilder::markOpenElements()
{
    if (!lineOpen)
        beginLine();
    for (; markedInlines < inlines.size(); ++markedInlines) {
        OpenInline& open = inlines[markedInlines];
        open.everMarked = true;
        totalCost += open.cost;
        marks.push_back(Mark::opening(int(text.size()), open.tag));
    }
}

void HtmlLineBuilder::endLine()
{
    heldSpace.clear();
    heldCollapsible = false;
    if (!lineOpen)
        return;
    while (markedInlines > 0)
        marks.push_back(Mark::closing(int(text.size()), inlines[--markedInlines].tag));
    if (endsCollapsible)
        text.pop_back();
    const auto length = std::int32_t(text.size());
    for (auto mark = marks.rbegin(); mark != marks.rend() && mark->pos > length; ++mark)
        mark->pos = length;

    addLine(blocks.empty() ? NoTag : blockOfLine());
    text.clear();
    marks.clear();
    endsCollapsible = false;
    lineOpen = false;
    if (inlines.size() > MaxCarriedDepth)
        inlines.resize(MaxCarriedDepth);
}

/// The block tag of a new line in the innermost block. Only the first line has the identifier.
TagId HtmlLineBuilder::blockOfLine()
{
    OpenBlock& around = blocks.back();
    if (around.filled && !around.withoutId) {
        around.tag = tags.withAttribute(around.tag, u"id", QString());
        around.withoutId = true;
    }
    around.filled = true;
    if (around.kind == ElementKind::Container)
        return plainBlock(around.tag);
    totalCost += around.cost;
    return around.tag;
}

/// The block of a line that is directly in a list or table, outside its items or cells.
TagId HtmlLineBuilder::plainBlock(TagId container)
{
    const QString align = InheritedAlign(tags[container]);
    const TagId div = tags.intern(u"DIV", {});
    return align.isEmpty() ? div : tags.withAttribute(div, u"align", align);
}

void HtmlLineBuilder::addLine(TagId block)
{
    const QStringView written(text.data(), qsizetype(text.size()));
    if (!marks.empty()) {
        // Of a longer line, the marks are a small part.
        constexpr qsizetype Short = 32;
        MarkList made = written.size() <= Short ? knownMarks.list(marks) : MarkList(marks);
        lines.push_back(MakeLine({block, written.toString(), std::move(made)}));
        return;
    }
    // Equal lines are one object: most of them are empty, or very short in a text of very many lines.
    LinePtr& last = similarLine(block, written);
    if (!last || last->block != block || last->text != written)
        last = MakeLine({block, written.toString(), {}});
    lines.push_back(last);
}

/// The last line that may be equal to a line without marks.
LinePtr& HtmlLineBuilder::similarLine(TagId block, QStringView written)
{
    constexpr qsizetype VeryShort = 3;
    constexpr std::size_t ManyLines = 1000;
    constexpr unsigned HashBits = 16;
    constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
    if (written.size() > VeryShort || lines.size() < ManyLines)
        return lastPlainLine;
    if (shortLines.empty())
        shortLines.resize(std::size_t(1) << HashBits);
    std::uint64_t key = block;
    for (const QChar c : written)
        key = key << 16 ^ key >> 48 ^ c.unicode();
    return shortLines[key * Spread >> (64 - HashBits)];
}

std::vector<LinePtr> HtmlLineBuilder::finish(bool& openEnded)
{
    while (!blocks.empty())
        closeBlock();
    const bool onlySpace = lines.empty() && !lineOpen && !heldSpace.empty();
    if (onlySpace && !heldCollapsible && spacing == Spacing::Keep)
        beginLine();
    closeAll();
    openEnded = lineOpen;
    endLine();
    return std::move(lines);
}

} // namespace vmk
