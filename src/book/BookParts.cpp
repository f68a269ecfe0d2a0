#include "BookParts.h"

#include "Boxes.h"
#include "EmptyPage.h"
#include "Globals.h"
#include "TextFunctions.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr std::string_view BookEnd = "</FictionBook>";
constexpr std::string_view ProgramName = "Vellumark";
constexpr std::string_view ProgramUsed = "<program-used>Vellumark</program-used>";
constexpr std::string_view AuthorStub = "<author><first-name></first-name><last-name></last-name></author>";
constexpr std::string_view DateStub = "<date></date><id></id><version>1.0</version>";

/// Position of `sought`, a tag in small letters, ignoring case.
size_t FindTag(std::string_view text, std::string_view sought, size_t from)
{
    constexpr char ToSmall = 0x20; // most tags are told apart by their first letter
    for (size_t at = text.find('<', from); at != std::string_view::npos; at = text.find('<', at + 1))
        if (at + 1 < text.size() && (text[at + 1] | ToSmall) == (sought[1] | ToSmall)
            && FindText(text.substr(at, sought.size()), sought, 0, true) == 0)
            return at;
    return std::string_view::npos;
}

struct Place
{
    size_t start;
    size_t size;
};

/// The first element of this name, written without attributes, from its start tag to the end tag that leaves
/// its own name balanced within.
std::optional<Place> FindElement(std::string_view text, std::string_view name)
{
    const std::string startTag = "<" + std::string(name) + ">";
    const std::string startOfTag = "<" + std::string(name);
    const std::string endTag = "</" + std::string(name) + ">";
    const size_t start = FindTag(text, startTag, 0);
    if (start == std::string_view::npos)
        return std::nullopt;

    size_t starts = 0;
    size_t ends = 0;
    size_t nextStart = start;
    for (size_t end = FindTag(text, endTag, start); end != std::string_view::npos; end = FindTag(text, endTag, end)) {
        ++ends;
        end += endTag.size();
        for (; nextStart < end; nextStart = FindTag(text, startOfTag, nextStart + startOfTag.size()))
            ++starts;
        if (starts == ends)
            return Place {start, end - start};
    }
    return std::nullopt;
}

void ReplaceFirst(std::string& text, std::string_view sought, const std::string& replacement)
{
    if (const size_t at = text.find(sought); at != std::string::npos)
        text.replace(at, sought.size(), replacement);
}

/// The text of an element without its tags, with single blanks.
std::string PlainText(std::string_view element, std::string_view nbsp)
{
    std::string plain = RegExpReplace(element, "<[^>]*>", " ", false);
    plain = ReplaceAll(std::move(plain), "&nbsp;", " ");
    plain = ReplaceAll(std::move(plain), nbsp, " ");
    return std::string(TrimBlanks(CollapseRepeats(std::move(plain), " ")));
}

/// Adds the program to those that the element names.
void NameProgram(std::string& text, Place place, std::string_view nbsp)
{
    std::string names = PlainText(std::string_view(text).substr(place.start, place.size), nbsp);
    if (FindText(names, ProgramName, 0, true) != std::string::npos)
        return;
    names = CollapseRepeats(names + ", " + std::string(ProgramName), ",");
    text.replace(place.start, place.size, "<program-used>" + std::string(TrimBlanks(names)) + "</program-used>");
}

void AddToDocumentInfo(std::string& text, Place place)
{
    constexpr std::string_view AuthorEnd = "</author>";
    if (const size_t author = text.find(AuthorEnd, place.start); author != std::string::npos)
        text.insert(author + AuthorEnd.size(), ProgramUsed);
    else
        ReplaceFirst(text, "<document-info>", "<document-info>" + std::string(AuthorStub) + std::string(ProgramUsed));
}

} // namespace

bool CutBinaryPart(std::string& text, std::string& binaryPart)
{
    constexpr std::string_view BinaryEnd = "</binary>";
    const size_t start = text.find("<binary");
    if (start == std::string::npos) {
        binaryPart.clear();
        return true;
    }
    const size_t end = text.rfind(BinaryEnd);
    if (end == std::string::npos || end <= start)
        return false;
    binaryPart = text.substr(start, end + BinaryEnd.size() - start);
    text.resize(start);
    text += BookEnd;
    return true;
}

bool SplitBinaryPart(std::string& text, bool preview)
{
    BadBinaryPart = false;
    BinaryPart.clear();
    if (CutBinaryPart(text, BinaryPart))
        return true;

    const QString sound = u"ParseError.wav"_s;
    if (preview) {
        ShowEmptyPage(u"Cannot open file: bad binary part"_s, QString(), sound, true, true);
    } else {
        ShowEmptyPage(u"Vellumark"_s, u"cannot open file: bad binary part"_s, sound, false, false);
        BadBinaryPart = true;
    }
    StopBox(u"Cannot load file: bad binary part"_s, u"Vellumark"_s);
    return false;
}

void ProtectAngleBrackets(std::string& text)
{
    // The marks are shorter, so the text can be rewritten in its place.
    constexpr std::string_view LeftMark = "\xe2\x80\xb9";
    constexpr std::string_view RightMark = "\xe2\x80\xba";
    size_t to = text.find('&');
    size_t from = to;
    while (from < text.size()) {
        const std::string_view rest = std::string_view(text).substr(from);
        size_t used = 1;
        if (rest.starts_with("&lt;") || rest.starts_with("&gt;")) {
            text.replace(to, 3, rest[1] == 'l' ? LeftMark : RightMark);
            to += 3;
            used = 4;
        } else {
            text[to++] = text[from];
        }
        from += used;
        const size_t next = std::min(text.find('&', from), text.size());
        std::char_traits<char>::move(text.data() + to, text.data() + from, next - from);
        to += next - from;
        from = next;
    }
    if (to != std::string::npos)
        text.resize(to);
}

void UpdateDescription(std::string& text, std::string_view nbsp)
{
    if (const std::optional<Place> used = FindElement(text, "program-used")) {
        NameProgram(text, *used, nbsp);
        return;
    }
    if (const std::optional<Place> info = FindElement(text, "document-info")) {
        AddToDocumentInfo(text, *info);
        return;
    }

    const std::string info = "<document-info>" + std::string(AuthorStub) + std::string(ProgramUsed)
        + std::string(DateStub) + "</document-info>";
    if (text.find("</title-info>") != std::string::npos)
        ReplaceFirst(text, "</title-info>", "</title-info>" + info);
    else
        ReplaceFirst(text, "<description>",
                     "<description><title-info>" + std::string(AuthorStub) + "</title-info>" + info);
}

} // namespace vmk
