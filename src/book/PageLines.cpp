#include "PageLines.h"

#include "LargeBuffers.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "PaintedNames.h"
#include "TagPaint.h"
#include "XmlDeclarations.h"
#include "XmlSerializer.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace vmk {

namespace {

/// Replace the brackets of a comment. If the text contains them itself, they are painted as brackets.
constexpr char CommentStartMark = 3;
constexpr char CommentEndMark = 4;

enum class LineEnds
{
    CrLfAndTabs, ///< the parser's layout: CrLf and one tab per level
    Cr, ///< a text without a tree; each comment is on its own line, except in a text that is kept
};

/// Bytes at which copying stops.
struct SpecialBytes
{
    bool set[256]{};

    SpecialBytes(bool quotes, bool nbsp, ControlCharacters controls)
    {
        for (const char c : {'<', '>', '&', '\r', ' '})
            set[static_cast<unsigned char>(c)] = true;
        for (const char c : {CommentStartMark, CommentEndMark})
            set[static_cast<unsigned char>(c)] = controls == ControlCharacters::Mark;
        set[static_cast<unsigned char>('"')] = quotes;
        set[0xc2] = nbsp;
    }
};

/// Writes the lines in one pass. The equivalent steps are separate passes over the whole text: escape angle
/// brackets, turn lines into `DIV`s, paint tags, attributes and comments, remove empty lines, mark
/// non-breaking spaces, shorten runs of blanks.
class LineWriter
{
public:
    LineWriter(const DisplayValues& displayValues, LineEnds ends, size_t maxDepth, std::string& page,
               ControlCharacters controls = ControlCharacters::Mark)
        : values(displayValues)
        , lineEnds(ends)
        , commentLines(ends == LineEnds::Cr && controls == ControlCharacters::Mark)
        , levels(maxDepth)
        , paint(TagPaint::Of(displayValues))
        , special(paint.attributes, displayValues.showNbsp, controls)
        , out(page)
        , lineStart(page.size())
    {
    }

    /// Writes a piece of the text that contains only whole tags and comments, and then ends the line.
    void write(std::string_view piece);
    /// Begins the next line, at this depth.
    void beginLine(size_t lineDepth) { endLine(text.size(), text.size(), lineDepth); }
    void finish();

private:
    size_t writeSpecial(size_t at);
    size_t writeLineEnd(size_t at);
    size_t writeStart(size_t at);
    size_t writeEnd(size_t at);
    size_t writeBlanks(size_t at);
    size_t writeQuote(size_t at);
    size_t replace(size_t at, size_t length, std::string_view with);
    [[nodiscard]] bool startsComment(size_t at);
    void plainQuote();
    void copy(size_t end);
    void openLine();
    void endLine(size_t end, size_t next, size_t nextDepth);
    [[nodiscard]] bool closeLine(std::string_view lineText, bool last);

    const DisplayValues& values;
    const LineEnds lineEnds;
    const bool commentLines; // each comment is on its own line
    const size_t levels;
    const TagPaint paint;
    const SpecialBytes special;
    std::string& out;

    std::string_view text; // the current piece
    size_t copied = 0; // the end of the part that is written
    size_t commentEnd = 0; // after the ">" of the last comment
    bool noAngleLeft = false; // no ">" after the position of the last search

    // The current line.
    size_t depth = 0;
    size_t lineStart; // of its DIV in `out`
    size_t lineTextStart = 0; // in `text`
    bool opened = false; // its DIV has been written
    bool isFirst = false; // its DIV has the identifier
    bool firstNamed = false; // some DIV has it

    // The current value.
    bool inValue = false;
    size_t valueStart = 0; // of its FONT in `out`
};

void LineWriter::write(std::string_view piece)
{
    text = piece;
    copied = lineTextStart = commentEnd = 0;
    noAngleLeft = false;
    for (size_t at = 0; at < text.size();)
        at = special.set[static_cast<unsigned char>(text[at])] ? writeSpecial(at) : at + 1;
    copy(text.size());
}

/// Writes the replacement for a special byte; returns the position at which to continue.
size_t LineWriter::writeSpecial(size_t at)
{
    const std::string_view rest = text.substr(at);
    switch (text[at]) {
    case ' ':
        return writeBlanks(at);
    case '<':
        return writeStart(at);
    case '>':
        return writeEnd(at);
    case '"':
        return writeQuote(at);
    case '\r':
        return writeLineEnd(at);
    case '&':
        if (rest.starts_with("&lt;"))
            return replace(at, 4, paint.start);
        return rest.starts_with("&gt;") ? replace(at, 4, paint.end) : at + 1;
    case CommentStartMark:
        return replace(at, 1, CommentStart);
    case CommentEndMark:
        return replace(at, 1, CommentEnd);
    default:
        return rest.starts_with(Utf8Nbsp) ? replace(at, 2, {&NbspMarker, 1}) : at + 1;
    }
}

size_t LineWriter::writeBlanks(size_t at)
{
    const size_t end = std::min(text.find_first_not_of(' ', at), text.size());
    if (end > at + 1) {
        copy(at + 1);
        copied = end;
    }
    return end;
}

size_t LineWriter::writeStart(size_t at)
{
    if (at < commentEnd || !startsComment(at))
        return replace(at, 1, paint.start);
    if (commentLines)
        endLine(at, at, 0);
    return replace(at, 1, CommentStart);
}

size_t LineWriter::writeEnd(size_t at)
{
    if (at + 1 != commentEnd)
        return replace(at, 1, paint.end);
    replace(at, 1, CommentEnd);
    if (commentLines)
        endLine(at + 1, at + 1, 0);
    return at + 1;
}

/// A comment ends at the next ">", even if that is not its own end.
bool LineWriter::startsComment(size_t at)
{
    if (noAngleLeft || !text.substr(at).starts_with("<!--"))
        return false;
    const size_t angle = text.find('>', at + 4);
    noAngleLeft = angle == std::string_view::npos;
    if (noAngleLeft)
        return false;
    commentEnd = angle + 1;
    return true;
}

size_t LineWriter::writeLineEnd(size_t at)
{
    if (lineEnds == LineEnds::Cr) {
        endLine(at, at + 1, 0);
        return at + 1;
    }
    if (!text.substr(at).starts_with(CrLf))
        return at + 1;
    const size_t firstTab = at + 2;
    const size_t tabs = std::min(text.find_first_not_of('\t', firstTab), text.size()) - firstTab;
    const size_t lineDepth = std::min(tabs, levels);
    endLine(at, firstTab + lineDepth, lineDepth);
    return firstTab + lineDepth;
}

size_t LineWriter::writeQuote(size_t at)
{
    copy(at);
    openLine();
    copied = at + 1;
    const std::optional<PaintedName> painted = PaintedNameAtEnd(text.substr(0, at));
    if (!painted) {
        plainQuote();
        return at + 1;
    }

    // The name is already written and is removed here; a blank that was merged with its own blank remains.
    const std::string_view name = painted->name;
    out.resize(out.size() - name.size());
    if (name.front() == ' ' && text.substr(0, at - name.size()).ends_with(' '))
        out += ' ';
    out += NameStart;
    out += name;
    out += FontEnd;
    if (painted->withValue && !inValue) {
        valueStart = out.size();
        out += ValueStart;
        out += '"';
        inValue = true;
    } else {
        plainQuote();
    }
    return at + 1;
}

/// A value ends at the next double quote, at any position.
void LineWriter::plainQuote()
{
    out += '"';
    if (inValue)
        out += FontEnd;
    inValue = false;
}

size_t LineWriter::replace(size_t at, size_t length, std::string_view with)
{
    copy(at);
    openLine();
    out += with;
    copied = at + length;
    return copied;
}

void LineWriter::copy(size_t end)
{
    if (end == copied)
        return;
    openLine();
    out.append(text, copied, end - copied);
    copied = end;
}

void LineWriter::openLine()
{
    if (opened)
        return;
    opened = true;
    if (depth > 0) {
        out += "<DIV style=";
        plainQuote();
        out += "MARGIN-LEFT: ";
        out += std::to_string(static_cast<long long>(depth) * values.nodeShift);
        out += "px";
        plainQuote();
        out += '>';
        return;
    }
    isFirst = !firstNamed;
    firstNamed = true;
    out += isFirst ? "<DIV id=FirstDiv>" : "<DIV>";
}

/// Ends the line at `end` of the piece and begins a new one at `next`.
void LineWriter::endLine(size_t end, size_t next, size_t nextDepth)
{
    copy(end);
    if (closeLine(text.substr(lineTextStart, end - lineTextStart), false))
        out += '\r';
    copied = lineTextStart = next;
    depth = nextDepth;
    lineStart = out.size();
    opened = isFirst = false;
}

/// Closes the line's DIV, or removes it if it is empty. Returns false if no line end follows it.
bool LineWriter::closeLine(std::string_view lineText, bool last)
{
    if (depth == 0 && lineText.empty() && (!last || firstNamed))
        return false;
    openLine();
    if (depth == 0 && lineText == " " && !isFirst)
        out.resize(lineStart);
    else
        out += "</DIV>";
    return true;
}

void LineWriter::finish()
{
    (void)closeLine(text.substr(lineTextStart), true);
    // Without a closing quote there is no value.
    if (inValue)
        out.erase(valueStart, ValueStart.size());
}

/// Reserves memory for the lines of `text`, generously.
void ReserveLines(std::string_view text, size_t lines, std::string& page)
{
    constexpr size_t PerTag = 20;
    constexpr size_t PerQuote = 22;
    constexpr size_t PerLine = 48;
    const auto tags = static_cast<size_t>(std::count(text.begin(), text.end(), '<'));
    const auto quotes = static_cast<size_t>(std::count(text.begin(), text.end(), '"'));
    std::string roomy
        = StringWithRoom(page.size() + text.size() + 2 * tags * PerTag + quotes * PerQuote + lines * PerLine);
    roomy += page;
    page = std::move(roomy);
}

size_t LongestTabRun(std::string_view text)
{
    size_t longest = 0;
    for (size_t at = text.find('\t'); at != std::string_view::npos; at = text.find('\t', at)) {
        const size_t end = std::min(text.find_first_not_of('\t', at), text.size());
        longest = std::max(longest, end - at);
        at = end;
    }
    return longest;
}

} // namespace

void PaintAttributes(std::string& text)
{
    std::string painted;
    size_t copied = 0;
    size_t valueStart = std::string::npos; // of its FONT, while a value is open
    for (size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 1)) {
        const std::string_view before = std::string_view(text).substr(0, at);
        const std::optional<PaintedName> name = PaintedNameAtEnd(before);
        // After an earlier painted name a value begins too.
        const bool opensValue = name ? name->withValue : before.ends_with(FontEnd);
        if (name) {
            painted.append(text, copied, at - name->name.size() - copied);
            // Both blanks are a fixed part of the mark-up.
            painted += name->withValue ? "<FONT  class=n>" : NameStart;
            painted += name->name;
            painted += FontEnd;
            copied = at;
        }
        if (valueStart != std::string::npos) {
            painted.append(text, copied, at + 1 - copied);
            copied = at + 1;
            painted += FontEnd;
            valueStart = std::string::npos;
        } else if (opensValue) {
            painted.append(text, copied, at - copied);
            copied = at;
            valueStart = painted.size();
            painted += ValueStart;
        }
    }
    painted.append(text, copied);
    if (valueStart != std::string::npos)
        painted.erase(valueStart, ValueStart.size());
    text = std::move(painted);
}

void AppendTreeLines(const XmlTreeText& tree, std::string_view declaration, const DisplayValues& values,
                     std::string& page, QuotedDeclarations quoted)
{
    const size_t behindDeclaration = tree.text.starts_with(declaration) ? declaration.size() : 0;

    // Declarations elsewhere, as in a comment, need the slow path.
    if (quoted == QuotedDeclarations::Replace
        && FindXmlDeclaration(tree.text, behindDeclaration) != std::string_view::npos) {
        const std::string text = tree.laidOut();
        const size_t levels = LongestTabRun(std::string_view(text).substr(behindDeclaration));
        LineWriter writer(values, LineEnds::CrLfAndTabs, levels, page);
        const std::string replaced = ReplaceXmlDeclarations(text, behindDeclaration, declaration);
        writer.write(replaced);
        writer.finish();
        return;
    }

    // The depth of the tree bounds the number of layout tabs; only a declaration can contain more.
    size_t levels = std::numeric_limits<size_t>::max();
    if (declaration.find("\r\n\t") != std::string_view::npos) {
        levels = LongestTabRun(std::string_view(tree.text).substr(behindDeclaration));
        for (const XmlTreeText::Break& place : tree.breaks)
            levels = std::max<size_t>(levels, place.depth);
    }

    ReserveLines(tree.text, tree.breaks.size(), page);
    LineWriter writer(values, LineEnds::CrLfAndTabs, levels, page);
    const std::string_view text = tree.text;
    size_t from = 0;
    for (const XmlTreeText::Break& place : tree.breaks) {
        writer.write(text.substr(from, place.position - from));
        writer.beginLine(place.depth);
        from = place.position + place.length;
    }
    writer.write(text.substr(from));
    writer.finish();
}

void AppendPlainLines(std::string_view text, const DisplayValues& values, std::string& page,
                      ControlCharacters controls)
{
    ReserveLines(text, static_cast<size_t>(std::count(text.begin(), text.end(), '\r')), page);
    LineWriter writer(values, LineEnds::Cr, 0, page, controls);
    writer.write(text);
    writer.finish();
}

} // namespace vmk
