#include "BookParts.h"

#include "BookVariables.h"
#include "Boxes.h"
#include "EmptyPage.h"
#include "TagFunctions.h"
#include "TextFunctions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr std::string_view BookEnd = "</FictionBook>";
/// U+2039 and U+203A.
constexpr std::string_view LeftMark = "\xe2\x80\xb9";
constexpr std::string_view RightMark = "\xe2\x80\xba";
constexpr std::string_view ProgramName = "Vellumark";
constexpr std::string_view ProgramUsed = "<program-used>Vellumark</program-used>";
constexpr std::string_view AuthorStub = "<author><first-name></first-name><last-name></last-name></author>";
constexpr std::string_view DateStub = "<date></date><id></id><version>1.0</version>";

/// Finds the element with this name, written without attributes, with its plain text.
Extraction FindElement(std::string_view text, const std::string& name)
{
    ExtractOptions options;
    options.makePlain = options.tidy = options.ignoreCase = options.balance = true;
    return ExtractBetween(text, "<" + name + ">", "</" + name + ">", 0, options);
}

void ReplaceFirst(std::string& text, std::string_view sought, const std::string& replacement)
{
    if (const size_t at = text.find(sought); at != std::string::npos)
        text.replace(at, sought.size(), replacement);
}

/// Adds the program to the names in the element.
void NameProgram(std::string& text, const Extraction& used)
{
    if (FindText(used.plain, ProgramName, 0, true) != std::string::npos)
        return;
    const std::string names = CollapseRepeats(used.plain + ", " + std::string(ProgramName), ",");
    text.replace(used.startPos, used.found.size(),
                 "<program-used>" + std::string(TrimBlanks(names)) + "</program-used>");
}

void AddToDocumentInfo(std::string& text, size_t start)
{
    constexpr std::string_view AuthorEnd = "</author>";
    if (const size_t author = text.find(AuthorEnd, start); author != std::string::npos)
        text.insert(author + AuthorEnd.size(), ProgramUsed);
    else
        ReplaceFirst(text, "<document-info>",
                     "<document-info>" + std::string(AuthorStub) + std::string(ProgramUsed));
}

} // namespace

bool IsBinaryPartDamaged(std::string_view text)
{
    const size_t start = text.find("<binary");
    const size_t end = start == std::string_view::npos ? start : text.rfind("</binary>");
    return start != std::string_view::npos && (end == std::string_view::npos || end <= start);
}

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
    // The pictures of a preview are discarded: those of the open book must remain, or its next save loses
    // them.
    std::string ofPreview;
    std::string& binaries = preview ? ofPreview : BinaryPart;
    binaries.clear();
    if (CutBinaryPart(text, binaries))
        return true;

    const QString sound = u"ParseError.wav"_s;
    if (preview) {
        ShowEmptyPage({.caption = u"Cannot open file: bad binary part"_s, .sound = sound, .preview = true});
    } else {
        ShowEmptyPage(
            {.caption = u"Vellumark"_s, .status = u"cannot open file: bad binary part"_s, .sound = sound});
        BadBinaryPart = true;
    }
    StopBox(u"Cannot load file: bad binary part"_s, u"Vellumark"_s);
    return false;
}

void ProtectAngleBrackets(std::string& text)
{
    // The marks are shorter, so the text can be rewritten in place.
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

void RestoreAngleBrackets(std::string& text)
{
    text = ReplaceAll(ReplaceAll(std::move(text), LeftMark, "&lt;"), RightMark, "&gt;");
}

void UpdateDescription(std::string& text)
{
    if (const Extraction used = FindElement(text, "program-used"); !used.found.empty()) {
        NameProgram(text, used);
        return;
    }
    if (const Extraction info = FindElement(text, "document-info"); !info.found.empty()) {
        AddToDocumentInfo(text, info.startPos);
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
