#include "DisplayToBook.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "Encodings.h"
#include "KeptLines.h"
#include "LargeBuffers.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "MarkupScanner.h"
#include "NonBreakingSpace.h"
#include "OutlinePage.h"
#include "TextFunctions.h"
#include "XmlDeclarations.h"
#include "XmlDocument.h"
#include "XmlSerializer.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr std::string_view BookEnd = "</FictionBook>";
constexpr std::string_view Utf8Mark = "\xef\xbb\xbf";

/// Visible text and its written form.
struct Token
{
    std::string_view shown;
    std::string_view meant;
};

constexpr std::array<Token, 4> Tokens
    = {Token{"&lt;", "<"}, Token{"&gt;", ">"}, Token{"\xe2\x80\xb9", "&lt;"}, Token{"\xe2\x80\xba", "&gt;"}};

/// Strips a page in one pass. The equivalent steps are separate passes over the whole text: remove line
/// wraps, write out blanks and markers, delete mark-up, and only then restore the angle brackets in the
/// joined result.
class PageStripper
{
public:
    PageStripper(std::string_view pageBody, AngleMarks marks)
        : page(pageBody)
        , tokenCount(marks == AngleMarks::Restore ? Tokens.size() : 2)
    {
        for (const char c : {'<', '&', '\r', NbspMarker})
            special[static_cast<unsigned char>(c)] = true;
        special[0xe2] = marks == AngleMarks::Restore;
    }

    [[nodiscard]] std::string run();

private:
    size_t writeSpecial(size_t at);
    size_t skipTag(size_t at);
    size_t joinToken(size_t at);
    size_t replace(size_t at, size_t length, std::string_view with);
    [[nodiscard]] size_t tokenLengthAtEnd() const;

    std::string_view page;
    size_t tokenCount; // the number of `Tokens` in use
    bool special[256]{};
    std::string out;
    size_t copied = 0; // the end of the part of the page that is written
    bool noTagLeft = false; // no ">" after the position of the last search
};

std::string PageStripper::run()
{
    out = StringWithRoom(page.size());
    for (size_t at = 0; at < page.size();)
        at = special[static_cast<unsigned char>(page[at])] ? writeSpecial(at) : at + 1;
    out.append(page, copied);
    return std::move(out);
}

/// Writes the replacement for a special byte; returns the position at which to continue.
size_t PageStripper::writeSpecial(size_t at)
{
    const std::string_view rest = page.substr(at);
    switch (page[at]) {
    case '<':
        return skipTag(at);
    case '\r': // the display wraps long lines after a blank
        return rest.starts_with(CrLf) && page.substr(0, at).ends_with(' ') ? replace(at, 2, {}) : at + 1;
    case NbspMarker:
        return replace(at, 1, Utf8Nbsp);
    default:
        for (size_t i = 0; i < tokenCount; ++i)
            if (rest.starts_with(Tokens[i].shown))
                return replace(at, Tokens[i].shown.size(), Tokens[i].meant);
        constexpr std::string_view Nbsp = "&nbsp;";
        return rest.starts_with(Nbsp) ? replace(at, Nbsp.size(), " ") : at + 1;
    }
}

size_t PageStripper::skipTag(size_t at)
{
    const size_t end = noTagLeft ? std::string_view::npos : page.find('>', at);
    noTagLeft = end == std::string_view::npos;
    if (noTagLeft)
        return at + 1;
    replace(at, end + 1 - at, {});
    return joinToken(end + 1);
}

/// Completes a token that the skipped mark-up had split.
size_t PageStripper::joinToken(size_t at)
{
    size_t length = tokenLengthAtEnd();
    while (length > 0 && at < page.size()) {
        const std::string begun = out.substr(out.size() - length) + page[at];
        size_t i = 0;
        while (i < tokenCount && !Tokens[i].shown.starts_with(begun))
            ++i;
        if (i == tokenCount)
            break;
        copied = ++at;
        if (begun == Tokens[i].shown) {
            out.resize(out.size() - length);
            out += Tokens[i].meant;
            break;
        }
        out += begun.back();
        ++length;
    }
    return at;
}

/// The length of an incomplete token at the end of the output.
size_t PageStripper::tokenLengthAtEnd() const
{
    constexpr size_t Longest = 3;
    for (size_t length = std::min(Longest, out.size()); length > 0; --length) {
        const std::string_view end = std::string_view(out).substr(out.size() - length);
        for (size_t i = 0; i < tokenCount; ++i)
            if (length < Tokens[i].shown.size() && Tokens[i].shown.starts_with(end))
                return length;
    }
    return 0;
}

size_t PageStripper::replace(size_t at, size_t length, std::string_view with)
{
    out.append(page, copied, at - copied);
    out += with;
    copied = at + length;
    return copied;
}

/// Replaces the text's own declaration.
void SetDeclaration(std::string& text, std::string_view declaration)
{
    if (text.starts_with(Utf8Mark))
        text.erase(0, Utf8Mark.size());
    if (!text.starts_with(XmlDeclarationStart))
        text.insert(0, declaration);
    else if (const size_t next = text.find('<', XmlDeclarationStart.size()); next != std::string::npos)
        text.replace(0, next, declaration);
}

/// The same for a declaration at any position; the text around it is kept.
void SetKeptDeclaration(std::string& text, std::string_view declaration)
{
    if (text.starts_with(Utf8Mark))
        text.erase(0, Utf8Mark.size());
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token) && !token.isTag();) {
        constexpr std::string_view Start = "<?xml";
        if (token.kind == MarkupToken::Kind::Instruction && token.text.starts_with(Start)
            && token.text.find_first_of(" \t\r\n", Start.size()) == Start.size()) {
            // A declaration without its end must not take the text up to the end of another instruction.
            const size_t end = std::min(token.end(), text.find('<', token.start + 1));
            const size_t next = std::min(text.find_first_not_of(" \t\r\n", end), text.size());
            text.replace(token.start, next - token.start, declaration);
            return;
        }
    }
    text.insert(0, declaration);
}

/// Whether the tabs of a layout dominate its text.
bool IsMostlyTabs(size_t laidOutSize, size_t textSize)
{
    constexpr size_t AlwaysFine = 64'000'000;
    constexpr size_t TimesTheText = 16;
    return laidOutSize > AlwaysFine + TimesTheText * textSize;
}

/// Returns the parser's layout of a text and frees `lines`. Returns nothing, and keeps `lines`, if the text
/// is not well-formed, or nested so deeply that the tabs would dominate the output.
std::optional<std::string> TreeForm(std::string& lines, const SaveLayout& layout)
{
    XmlSerializer serializer(layout.inLineTags.elementNames(), layout.declaration, lines.size());
    if (layout.keepsText)
        serializer.keepTextOf(TextElementNames(layout.inLineTags));
    XmlDocument document;
    if (!document.loadXML(lines, XmlEncoding::utf8(), &serializer))
        return std::nullopt;
    const XmlTreeText tree = serializer.take();
    if (IsMostlyTabs(tree.laidOutSize(), tree.text.size()))
        return std::nullopt;
    std::string().swap(lines); // frees memory for the tree
    if (layout.keepsText)
        return tree.laidOut();
    return ReplaceXmlDeclarations(tree.laidOut(), layout.declaration.size(), layout.declaration);
}

/// The same for a text in common form, without the parser. Returns nothing, and keeps the text, for any
/// other.
std::optional<std::string> OutlinedTree(std::string& text, const SaveLayout& layout)
{
    if (!text.starts_with(layout.declaration))
        return std::nullopt;
    OutlinedText book;
    std::optional<BookOutline> outline
        = OutlineOf(text, layout.declaration.size(), text.size(), layout.inLineTags, true);
    if (!outline)
        return std::nullopt;
    size_t size = text.size();
    for (const BookOutline::LineStart& line : outline->lines)
        size += size_t(line.depth);
    if (IsMostlyTabs(size, text.size()))
        return std::nullopt;
    book.outline = *std::move(outline);
    book.declaration = layout.declaration;
    book.text = std::move(text);
    return XmlOfOutline(book);
}

/// Lays the text out, in UTF-8.
std::string LaidOut(std::string text, const SaveLayout& layout, bool& treeSkipped)
{
    if (layout.style == LayoutStyle::Compact) {
        text = CollapseRepeats(ReplaceAll(std::move(text), CrLf, " "), " ");
        return std::string(TrimBlanks(text));
    }
    if (layout.keepsText && layout.style == LayoutStyle::TagsTree) {
        if (std::optional<std::string> tree = OutlinedTree(text, layout))
            return *std::move(tree);
    }
    LineLosses losses; // counted on loading; here nothing is lost
    text = layout.keepsText ? KeptTreeLines(text, CrLf, layout.inLineTags, losses)
                            : TreeLines(std::move(text), CrLf, layout.inLineTags);
    if (layout.style == LayoutStyle::TagsTree) {
        if (std::optional<std::string> tree = TreeForm(text, layout))
            return *std::move(tree);
        treeSkipped = true;
    }
    return text;
}

/// Inserts the lines of pictures before each end of the book, including one in a comment. In a book whose end
/// is damaged, the pictures follow the text.
std::string WithBinaries(std::string_view text, const std::string& binaries)
{
    const size_t ends = CountOccurrences(text, BookEnd);
    std::string result = StringWithRoom(text.size() + std::max<size_t>(ends, 1) * binaries.size() + 2);
    if (ends == 0)
        return result.append(text).append(CrLf).append(binaries);
    size_t copied = 0;
    for (size_t at = text.find(BookEnd); at != std::string_view::npos; at = text.find(BookEnd, copied)) {
        result.append(text, copied, at - copied);
        result += binaries;
        result += BookEnd;
        copied = at + BookEnd.size();
    }
    result.append(text, copied);
    return result;
}

/// Pictures are ASCII and need no conversion. Only names with other letters do.
std::string BinariesInEncoding(const SaveLayout& layout)
{
    std::string binaries(layout.binaryPart);
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (layout.binaryCodePage == layout.codePage || std::ranges::all_of(binaries, isAscii))
        return binaries;
    if (layout.binaryCodePage != CodePageUtf8)
        CodePageToUtf8(binaries, layout.binaryCodePage);
    if (layout.codePage != CodePageUtf8)
        Utf8ToCodePage(binaries, layout.codePage);
    return binaries;
}

/// Tidies one run of line ends, blanks and non-breaking spaces.
std::string TidyStretch(std::string stretch, std::string_view nbsp)
{
    const std::string end(CrLf);
    const std::string space(nbsp);
    stretch = ReplaceAll(std::move(stretch), " " + end, end);
    stretch = ReplaceAll(std::move(stretch), end + " ", end);
    stretch = ReplaceAll(std::move(stretch), space + end, end);
    stretch = ReplaceAll(std::move(stretch), end + space, end);
    return CollapseRepeats(std::move(stretch), end);
}

/// Removes blanks and non-breaking spaces next to line ends, one of each kind on each side; then empty lines
/// and double blanks. All changes are within runs of these characters.
std::string TidyLineEnds(const std::string& text, std::string_view nbsp)
{
    const std::string_view view = text;
    const std::array<std::string_view, 3> units
        = {std::string_view(" "), nbsp.empty() ? std::string_view(" ") : nbsp, std::string_view(CrLf)};
    std::string result = StringWithRoom(text.size());
    size_t copied = 0;
    for (size_t at = view.find(CrLf); at != std::string_view::npos; at = view.find(CrLf, copied)) {
        size_t start = at;
        const auto endsWithNbsp = [&](size_t place) {
            return !nbsp.empty() && view.substr(copied, place - copied).ends_with(nbsp);
        };
        while (start > copied && (view[start - 1] == ' ' || endsWithNbsp(start)))
            start -= view[start - 1] == ' ' ? 1 : nbsp.size();
        size_t end = at + 2;
        for (bool more = true; more;) {
            const std::string_view rest = view.substr(end);
            const auto unit = std::find_if(units.begin(), units.end(),
                                           [rest](std::string_view u) { return rest.starts_with(u); });
            more = unit != units.end();
            end += more ? unit->size() : 0;
        }
        result.append(view, copied, start - copied);
        result += end - start == 2 ? std::string(CrLf) : TidyStretch(text.substr(start, end - start), nbsp);
        copied = end;
    }
    result.append(view, copied);
    return CollapseRepeats(std::move(result), " ");
}

} // namespace

std::string TextOfPage(std::string_view page, AngleMarks marks)
{
    constexpr std::string_view HeadEnd = "</HEAD>";
    if (const size_t head = FindText(page, HeadEnd, 0, true); head != std::string_view::npos)
        page.remove_prefix(head + HeadEnd.size());
    std::string text = PageStripper(page, marks).run();
    DropBeforeDeclaration(text);
    return text;
}

std::string GetFbTextFromDisplay(bool realCharacters)
{
    const HourglassScope hourglass;
    ShowStatus(u"...getting Fiction Book text...wait, please"_s);
    std::string text = DisplayTextSeam()(AngleMarks::Keep);
    if (!realCharacters)
        Utf8ToCodePage(text, WorkCodePage);
    ShowStatus(QString());
    return text;
}

namespace {

/// Returns the file of a text that keeps all of it: only layout is tidied, before the encoding, and the
/// pictures are inserted before the real end of the book.
BookFile FileOfKeptText(std::string text, const SaveLayout& layout)
{
    BookFile file;
    SetKeptDeclaration(text, layout.declaration);
    text = TidyLineEnds(LaidOut(std::move(text), layout, file.treeSkipped), {});
    const auto encoded = [&layout](std::string_view part) {
        return layout.codePage == CodePageUtf8 ? std::string(part) : Utf8ToBytes(part, layout.codePage);
    };
    if (layout.binaryPart.empty()) {
        file.bytes = encoded(text);
        return file;
    }
    size_t end = text.size();
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);)
        if (token.kind == MarkupToken::Kind::EndTag && token.name() == "FictionBook")
            end = token.start;
    std::string_view front = std::string_view(text).substr(0, end);
    if (front.ends_with(' '))
        front.remove_suffix(1);
    file.bytes = encoded(front);
    if (!front.ends_with(CrLf))
        file.bytes += CrLf;
    file.bytes += BinariesInEncoding(layout);
    file.bytes += CrLf;
    file.bytes += encoded(std::string_view(text).substr(end));
    return file;
}

} // namespace

BookFile FileOfText(std::string text, const SaveLayout& layout)
{
    if (layout.keepsText)
        return FileOfKeptText(std::move(text), layout);
    BookFile file;
    SetDeclaration(text, layout.declaration);
    text = LaidOut(std::move(text), layout, file.treeSkipped);

    const bool isUtf8 = layout.codePage == CodePageUtf8;
    if (!isUtf8)
        Utf8ToCodePage(text, layout.codePage);

    // The tree has a line end there already.
    if (!layout.binaryPart.empty()) {
        const bool tree = layout.style == LayoutStyle::TagsTree && !file.treeSkipped;
        text = WithBinaries(text, (tree ? std::string() : CrLf) + BinariesInEncoding(layout) + CrLf);
    }
    file.bytes = TidyLineEnds(text, isUtf8 ? std::string_view(Utf8Nbsp) : std::string_view("\xa0"));
    return file;
}

} // namespace vmk
