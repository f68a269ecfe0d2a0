#include "OutlinedBook.h"

#include "BookParts.h"
#include "CodePages.h"
#include "TextFunctions.h"
#include "Utf8.h"

#include <algorithm>
#include <utility>

namespace vmk {

namespace {

constexpr std::size_t None = std::string_view::npos;
constexpr std::string_view White = " \t\r\n";
constexpr std::string_view Utf8Mark = "\xef\xbb\xbf";
constexpr std::string_view BookEnd = "</FictionBook>";
constexpr std::string_view BinaryStart = "<binary";
constexpr std::string_view BinaryEnd = "</binary>";
constexpr std::string_view DescriptionEnd = "</description>";

/// An XML declaration in a usual form.
struct Declaration
{
    std::string_view text; ///< empty if there is none
    std::string encoding; ///< in lower case
    /// The values are in single quotes, in which the editor's own rules do not find the encoding.
    bool hasSingleQuotes = false;
};

/// Returns the declaration at the start of the bytes.
Declaration UsualDeclaration(std::string_view bytes)
{
    constexpr std::string_view Front = "<?xml version=";
    constexpr std::size_t LongestName = 20;
    if (bytes.size() <= Front.size() || !bytes.starts_with(Front))
        return {};
    const char quote = bytes[Front.size()];
    std::size_t end = Front.size();
    const auto skip = [&](std::string piece) {
        std::ranges::replace(piece, '"', quote);
        const bool isThere = bytes.substr(end).starts_with(piece);
        end += isThere ? piece.size() : 0;
        return isThere;
    };
    if ((quote != '"' && quote != '\'') || !skip(R"("1.0" encoding=")"))
        return {};
    const std::size_t close = bytes.find(quote, end);
    if (close == None || close - end > LongestName)
        return {};
    Declaration found{{}, LowerCase(std::string(bytes.substr(end, close - end))), quote != '"'};
    end = close + 1;
    if (!skip(R"( standalone="yes")"))
        skip(R"( standalone="no")");
    skip(" ");
    if (skip("?>"))
        found.text = bytes.substr(0, end);
    return found;
}

/// Finds the encoding of the bytes. Returns false if the editor's own rules find another one than the
/// declaration, except for UTF-8 that is declared in single quotes.
bool FindEncoding(OutlinedBook& book, std::string_view bytes, const Declaration& declaration)
{
    book.encoding = FindBookEncoding(bytes, "original");
    const std::string& name = declaration.encoding;
    const bool isMisread = declaration.hasSingleQuotes && name == "utf-8" && book.encoding.work.name != name;
    if (isMisread) {
        const std::size_t characters = NonAsciiCount(bytes);
        // In ASCII, both encodings are right.
        if (characters == 0 || !IsValidUtf8(bytes) || book.encoding.work.codePage == CodePageUtf16)
            return false;
        book.losses.misreadCharacters = characters;
        book.losses.encoding = QString::fromStdString(name);
        book.encoding.work = book.encoding.file = MakeBookEncoding(name);
    }
    return book.encoding.work.codePage != CodePageUtf16 && book.encoding.work.name == name
        && MakeBookEncoding(name).name == name && OutputEncodingInfo(name).name == name;
}

/// True if each byte is a character of the code page.
bool AreCharacters(std::string_view bytes, std::int32_t codePage)
{
    std::string_view undefined;
    if (codePage == CodePageCyrillic)
        undefined = "\x98";
    else if (codePage == CodePageWestern)
        undefined = "\x81\x8d\x8f\x90\x9d";
    else
        undefined = "\x81\x83\x88\x90\x98";
    return bytes.find('\0') == None
        && std::ranges::all_of(undefined, [bytes](char c) { return bytes.find(c) == None; });
}

/// Returns the end of the pictures that begin at `start`, if they are complete, one after another, and only
/// the end tag of the book follows; otherwise `None`.
std::size_t EndOfPictures(std::string_view text, std::size_t start)
{
    std::size_t at = start;
    std::size_t end = start;
    while (text.substr(at).starts_with(BinaryStart)) {
        const std::size_t name = at + BinaryStart.size();
        const std::size_t close = text.find('>', name);
        if (close == None || White.find(text[name]) == None || text[close - 1] == '/')
            return None;
        const std::string_view tag = text.substr(at, close - at);
        if (tag.find('<', 1) != None || tag.find('\'') != None || std::ranges::count(tag, '"') % 2 != 0)
            return None;
        const std::size_t next = text.find('<', close);
        if (next == None || !text.substr(next).starts_with(BinaryEnd))
            return None;
        end = next + BinaryEnd.size();
        at = std::min(text.find_first_not_of(White, end), text.size());
    }
    const bool isEnd
        = text.substr(at).starts_with(BookEnd) && text.find_first_not_of(White, at + BookEnd.size()) == None;
    return isEnd && end > start ? end : None;
}

/// Cuts the pictures out of the text. Returns false, with the text unchanged, if they are not in common form.
bool CutPictures(OutlinedBook& book, std::string& text)
{
    const std::size_t start = text.find(BinaryStart);
    if (start == None)
        return true;
    const std::size_t end = EndOfPictures(text, start);
    if (end == None)
        return false;
    book.binaryPart = text.substr(start, end - start);
    book.binaryCodePage = book.encoding.work.codePage;
    book.afterPictures = text.substr(end);
    text.resize(start);
    text += BookEnd;
    return true;
}

/// Names the program in the description, whose end is `book.updatedEnd`. Returns false, with the text
/// unchanged, if the description is not in common form.
bool UpdateOutlinedDescription(OutlinedBook& book, std::string& text)
{
    std::string head = text.substr(0, book.updatedEnd);
    const std::size_t used = FindText(head, "<program-used>", 0, true);
    const std::size_t usedEnd = used == None ? None : FindText(head, "</program-used>", used, true);
    if (usedEnd != None && head.find('<', used + 1) < usedEnd)
        return false;
    // The update may look for an author after the description.
    const std::size_t info = FindText(head, "<document-info>", 0, true);
    if (info != None && head.find("</author>", info) == None && text.find("</author>", head.size()) != None)
        return false;
    std::string updated = head;
    UpdateDescription(updated);
    text.replace(0, head.size(), updated);
    book.description = std::move(head);
    book.updatedEnd = updated.size();
    return true;
}

/// Reverts the changes of the text.
void Restore(OutlinedBook& book, std::string& text)
{
    if (!book.afterPictures.empty()) {
        text.resize(text.size() - BookEnd.size());
        text += book.binaryPart;
        text += book.afterPictures;
    }
    if (!book.description.empty())
        text.replace(0, book.updatedEnd, book.description);
}

} // namespace

std::string OutlinedBook::takeBytes()
{
    if (!bytes.empty())
        return std::exchange(bytes, {});
    std::string all = std::exchange(text->text, {});
    Restore(*this, all);
    return all;
}

std::optional<OutlinedBook> ReadOutlinedBook(std::string& bytes, bool showNbsp,
                                             const InLineTagSet& inLineTags, const QString& inputEncoding)
{
    if (inputEncoding != u"original")
        return std::nullopt;
    const std::size_t mark = bytes.starts_with(Utf8Mark) ? Utf8Mark.size() : 0;
    const Declaration declaration = UsualDeclaration(std::string_view(bytes).substr(mark));
    OutlinedBook book;
    if (declaration.text.empty() || (mark > 0 && declaration.hasSingleQuotes)
        || !FindEncoding(book, bytes, declaration))
        return std::nullopt;
    const std::int32_t codePage = book.encoding.work.codePage;
    const bool isUtf8 = codePage == CodePageUtf8;
    if (!isUtf8 && (mark > 0 || !AreCharacters(bytes, codePage)))
        return std::nullopt;

    book.text = std::make_shared<OutlinedText>();
    book.text->declaration = book.encoding.declaration;
    const std::size_t start = mark + declaration.text.size();
    std::string& text = book.text->text;
    if (isUtf8)
        text.swap(bytes);
    else
        text = BytesToUtf8(bytes, codePage);
    const auto refuse = [&] {
        if (isUtf8) {
            Restore(book, text);
            text.swap(bytes);
        }
        return std::nullopt;
    };
    const std::size_t descriptionEnd = text.find(DescriptionEnd);
    if (descriptionEnd == None)
        return refuse();
    book.updatedEnd = descriptionEnd + DescriptionEnd.size();
    if (!CutPictures(book, text))
        return refuse();
    // In a code page the editor's own rules resolve the references before they protect the brackets.
    if (!isUtf8 && HasCharRefs(text))
        book.losses.garbledBrackets = CountOccurrences(text, "&lt;") + CountOccurrences(text, "&gt;");
    if (!UpdateOutlinedDescription(book, text))
        return refuse();
    std::optional<BookOutline> outline = OutlineOf(text, start, book.updatedEnd, inLineTags, showNbsp);
    if (!outline)
        return refuse();
    book.text->outline = *std::move(outline);
    book.losses.lines.joinedWords = book.text->outline.joinedWords;
    book.losses.lines.tornTexts = book.text->outline.tornTexts;
    book.losses.movedElements = book.text->outline.movedElements;
    book.losses.characters = book.text->outline.characters;
    if (!isUtf8) {
        // The pictures are kept in the encoding of the book.
        std::string rest = bytes;
        static_cast<void>(CutBinaryPart(rest, book.binaryPart));
        book.bytes = std::exchange(bytes, {});
    }
    return book;
}

} // namespace vmk
