#include "BookReading.h"

#include "BookParts.h"
#include "CodePages.h"
#include "MarkupScanner.h"
#include "TextFunctions.h"
#include "Utf8.h"
#include "XmlDeclarations.h"
#include "XmlInput.h"

#include <algorithm>
#include <array>

namespace vmk {

namespace {

constexpr std::string_view Utf8Mark = "\xef\xbb\xbf";
constexpr std::string_view BookEnd = "</FictionBook>";
constexpr std::string_view BinaryEnd = "</binary>";
constexpr std::string_view Utf8Name = "utf-8";

/// The text of a book between its bytes and its page.
struct DecodedBook
{
    std::string text; // UTF-8
    DetectedEncoding encoding;
    bool asGiven = true; // the editor reads the same text
};

/// Decodes the bytes as the editor does, except for characters 0, which are kept.
std::string DecodeAsGiven(std::string_view bytes, int32_t codePage)
{
    if (codePage == CodePageUtf8)
        return std::string(bytes);
    if (codePage != CodePageUtf16)
        return BytesToUtf8(bytes, codePage);
    std::string text(bytes);
    UnicodeToCodePage(text, CodePageUtf8);
    return text;
}

/// Records that the encoding of the book is not the one that the editor assumes.
void SetEncoding(DecodedBook& book, std::string_view text, std::string name, BookLosses& losses)
{
    if (name == "us-ascii" || name == "ascii" || name == "utf8")
        name = Utf8Name;
    if (name.starts_with("cp125"))
        name = "windows-" + name.substr(2);
    losses.encoding = QString::fromStdString(name);
    // Of the encodings that the parser can read, only four can be written.
    const std::string known = OutputEncodingInfo(name).name;
    book.encoding.file = MakeBookEncoding(known);
    book.encoding.work = book.encoding.file;
    book.encoding.declaration = DetectPreviewEncoding(text).declaration;
    book.asGiven = false;
}

/// Decodes all of a UTF-16 text, which the editor cuts if it is not ASCII.
void DecodeUtf16(DecodedBook& book, std::string_view bytes, BookLosses& losses)
{
    constexpr std::string_view Mark = "\xff\xfe";
    losses.replacedBytes = bytes.size() % 2;
    std::string whole = BytesToUtf8(bytes.substr(bytes.starts_with(Mark) ? Mark.size() : 0), CodePageUtf16);
    if (whole.size() <= book.text.size())
        return;
    losses.cutCharacters = CharacterCount(std::string_view(whole).substr(book.text.size()));
    book.text = std::move(whole);
    book.asGiven = false;
}

/// The name of the encoding if it is one that the editor itself reads and writes; otherwise empty.
std::string OwnEncoding(std::string name)
{
    if (name == "utf8")
        name = Utf8Name;
    if (name.starts_with("cp125"))
        name = "windows-" + name.substr(2);
    return OutputEncodingInfo(name).name == name ? name : std::string();
}

/// True if most of the bytes that are not ASCII belong to characters of UTF-8.
bool IsMostlyUtf8(std::string_view bytes)
{
    size_t characters = 0;
    size_t foreign = 0;
    while (!bytes.empty()) {
        const size_t valid = ValidUtf8Prefix(bytes);
        characters += NonAsciiCount(bytes.substr(0, valid));
        foreign += valid < bytes.size() ? 1 : 0;
        bytes.remove_prefix(std::min(valid + 1, bytes.size()));
    }
    return characters >= foreign;
}

/// Decodes a text with bytes that are no characters of its encoding, which alone do not make another encoding
/// likely. Returns false if the editor has no table for the encoding.
bool DecodeWithForeignBytes(XmlDecodedText& decoded, std::string_view bytes)
{
    const std::string own = OwnEncoding(decoded.encoding);
    if (own.empty() || (own == Utf8Name && !IsMostlyUtf8(bytes)))
        return false;
    decoded.text = DecodeAsGiven(bytes, EncodingCodePage(own));
    return true;
}

bool StartsWithDeclaration(std::string_view text)
{
    constexpr std::string_view Start = "<?xml";
    return text.starts_with(Start) && text.find_first_of(" \t\r\n") == Start.size();
}

/// True if there is white space before the declaration.
bool IsDeclaredLate(std::string_view text)
{
    const size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && StartsWithDeclaration(text.substr(first));
}

/// Decodes the bytes as the editor does or, if it would misread them, as XML specifies.
DecodedBook Decode(std::string_view bytes, const QString& inputEncoding, BookLosses& losses)
{
    DecodedBook book;
    book.encoding = FindBookEncoding(bytes, inputEncoding.toStdString());
    const int32_t codePage = book.encoding.work.codePage;
    book.text = DecodeAsGiven(bytes, codePage);
    if (codePage == CodePageUtf16) {
        DecodeUtf16(book, bytes, losses);
        return book;
    }
    if (inputEncoding != u"original")
        return book;

    // Without a declaration the bytes are UTF-8 if they are valid; a declaration may follow white space.
    const bool marked = bytes.starts_with(Utf8Mark);
    const std::string_view start = bytes.substr(marked ? Utf8Mark.size() : 0);
    const bool declared = StartsWithDeclaration(start) || start.starts_with('\xff')
        || start.starts_with('\xfe') || start.find('\0') < 4;
    const auto isUtf8 = [&] { return marked ? IsMostlyUtf8(start) : IsValidUtf8(bytes); };
    if (!declared && (codePage == CodePageUtf8 || IsDeclaredLate(start) || !isUtf8()))
        return book;
    if (codePage == CodePageUtf8 && (marked || !declared))
        return book;
    XmlDecodedText decoded = DecodeXmlText(bytes);
    if (decoded.encoding.empty() || (!decoded.complete && !DecodeWithForeignBytes(decoded, start)))
        return book;
    const std::string_view given = std::string_view(book.text).substr(
        decoded.encoding == Utf8Name && marked && codePage == CodePageUtf8 ? Utf8Mark.size() : 0);
    if (decoded.text == given)
        return book;
    losses.misreadCharacters = std::max<size_t>(NonAsciiCount(decoded.text), 1);
    SetEncoding(book, decoded.text, decoded.encoding, losses);
    book.text = std::move(decoded.text);
    return book;
}

bool IsBinary(const MarkupToken& token)
{
    return token.isTag() && token.name() == "binary";
}

/// Cuts the pictures out: from the first real "<binary" to the real end tag of the book.
void CutPictures(KeptBook& kept, std::string& text, std::string_view bytes, bool asGiven)
{
    size_t start = text.find("<binary");
    if (start == std::string::npos)
        return;
    const size_t quotedStart = start;
    MarkupScanner scanner(text);
    size_t lastEnd = std::string::npos; // after the last "</binary>"
    size_t bookEnd = std::string::npos; // of the last end tag of the book
    start = std::string::npos;
    for (MarkupToken token; scanner.next(token);) {
        if (IsBinary(token)) {
            if (start == std::string::npos)
                start = token.start;
            if (token.kind != MarkupToken::Kind::StartTag)
                lastEnd = token.end();
        } else if (token.kind == MarkupToken::Kind::EndTag && token.name() == "FictionBook") {
            bookEnd = token.start;
        }
    }
    const size_t quotedEnd = text.rfind(BinaryEnd);
    const bool quoted = start != quotedStart || lastEnd != quotedEnd + BinaryEnd.size();
    kept.losses.misplacedPictures += quoted ? 1 : 0;
    if (start == std::string::npos || lastEnd == std::string::npos)
        return;

    // The text between the last picture and the end of the book is cut with the pictures; the text after the
    // end is kept.
    std::string rest(BookEnd);
    size_t end = lastEnd;
    if (bookEnd != std::string::npos && bookEnd >= lastEnd) {
        const std::string_view between = std::string_view(text).substr(lastEnd, bookEnd - lastEnd);
        const std::string_view after = std::string_view(text).substr(bookEnd);
        if (!IsBlank(between))
            end = bookEnd;
        if (!IsBlank(after.substr(std::min(BookEnd.size(), after.size()))) || !after.starts_with(BookEnd))
            rest = after;
        kept.losses.droppedBytes += IsBlank(between) ? 0 : CharacterCount(TrimBlanks(between));
        if (rest != BookEnd)
            kept.losses.droppedBytes += CharacterCount(after) - BookEnd.size();
    } else {
        end = text.size();
        kept.losses.droppedBytes += CharacterCount(std::string_view(text).substr(lastEnd));
    }
    kept.binaryPart = text.substr(start, end - start);
    kept.binaryPart.resize(kept.binaryPart.find_last_not_of(" \t\r\n") + 1);
    kept.binaryCodePage = CodePageUtf8;
    // In the form that the editor keeps: the bytes of the file.
    std::string given(bytes);
    std::string givenPart;
    if (asGiven && !quoted && end == lastEnd && CutBinaryPart(given, givenPart)
        && kept.encoding.work.codePage != CodePageUtf16) {
        kept.binaryPart = std::move(givenPart);
        kept.binaryCodePage = kept.encoding.work.codePage;
    }
    text.replace(start, std::string::npos, rest); // NOLINT(readability-suspicious-call-argument)
}

/// Returns a copy of the text in which comments and similar are blank, so that they are not read as mark-up.
std::string Masked(const std::string& text, bool& differs)
{
    std::string masked = text;
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);) {
        if (!token.isRaw())
            continue;
        constexpr std::array<std::string_view, 5> Names
            = {"program-used", "document-info", "title-info", "description>", "author>"};
        const std::string lower = LowerCase(std::string(token.text));
        differs = differs || std::ranges::any_of(Names, [&lower](std::string_view name) {
                      return lower.find(name) != std::string::npos;
                  });
        std::fill_n(masked.begin() + std::ptrdiff_t(token.start), token.text.size(), ' ');
    }
    return masked;
}

/// `UpdateDescription` without changes to comments and mark-up.
void UpdateKeptDescription(std::string& text, BookLosses& losses)
{
    constexpr std::string_view Start = "<program-used>";
    constexpr std::string_view End = "</program-used>";
    constexpr std::string_view Name = "Vellumark";
    bool quoted = false;
    std::string masked = Masked(text, quoted);
    const size_t start = FindText(masked, Start, 0, true);
    const size_t end = start == std::string::npos ? start : FindText(masked, End, start, true);
    if (start != std::string::npos && end != std::string::npos) {
        const std::string_view inner
            = std::string_view(text).substr(start + Start.size(), end - start - Start.size());
        if (inner.find('<') == std::string_view::npos && !quoted)
            return UpdateDescription(text);
        if (FindText(inner, Name, 0, true) != std::string_view::npos)
            return;
        ++losses.descriptions;
        text.insert(end, (IsBlank(inner) ? std::string() : std::string(", ")) + std::string(Name));
        return;
    }
    if (!quoted)
        return UpdateDescription(text);
    // The update inserts one piece; it is inserted at the same position of the real text.
    const std::string before = masked;
    UpdateDescription(masked);
    const size_t added = masked.size() - before.size();
    const size_t at = static_cast<size_t>(
        std::mismatch(before.begin(), before.end(), masked.begin(), masked.end()).first - before.begin());
    losses.descriptions += added > 0 ? 1 : 0;
    text.insert(at, masked.substr(at, added));
}

/// Replaces the tabs of a broken text by blanks: only the layout of a tree consists of tabs.
size_t BlankTabs(std::string& text)
{
    const auto isWord = [](char c) { return static_cast<unsigned char>(c) > ' ' && c != '<' && c != '>'; };
    size_t parting = 0;
    for (size_t at = text.find('\t'); at != std::string::npos; at = text.find('\t', at + 1)) {
        parting += at > 0 && at + 1 < text.size() && isWord(text[at - 1]) && isWord(text[at + 1]) ? 1 : 0;
        text[at] = ' ';
    }
    return parting;
}

/// Counts characters before the declaration, or between it and the first tag, which the editor loses on
/// saving.
size_t CharactersBeforeRoot(std::string_view text)
{
    size_t count = 0;
    MarkupScanner scanner(text.substr(text.starts_with(Utf8Mark) ? Utf8Mark.size() : 0));
    for (MarkupToken token; scanner.next(token) && !token.isTag();)
        if (token.kind == MarkupToken::Kind::Text)
            for (const char c : token.text)
                count += static_cast<unsigned char>(c) > ' ' ? 1 : 0;
    return count;
}

} // namespace

KeptBook ReadKeptBook(std::string_view bytes, const DisplayValues& values, const InLineTagSet& inLineTags,
                      const QString& inputEncoding)
{
    KeptBook kept;
    DecodedBook book = Decode(bytes, inputEncoding, kept.losses);
    kept.encoding = book.encoding;
    std::string text = std::move(book.text);
    // The code pages have no character 0, so that the editor removes it.
    if (kept.encoding.work.codePage != CodePageUtf8)
        kept.losses.controls += static_cast<size_t>(std::ranges::count(text, '\0'));
    const bool isUtf16 = kept.encoding.work.codePage == CodePageUtf16;
    if (!isUtf16 || !book.asGiven)
        CutPictures(kept, text, bytes, book.asGiven);
    // The editor writes the pictures before each end of the book, even before one quoted in a comment.
    if (!kept.binaryPart.empty() && CountOccurrences(text, BookEnd) > 1)
        ++kept.losses.misplacedPictures;
    if (book.asGiven && !isUtf16 && kept.encoding.work.codePage != CodePageUtf8 && HasCharRefs(text))
        kept.losses.garbledBrackets = CountOccurrences(text, "&lt;") + CountOccurrences(text, "&gt;");

    UpdateKeptDescription(text, kept.losses);
    kept.losses.droppedBytes += CharactersBeforeRoot(text);
    ProtectCharacters(text, values.showNbsp, kept.losses.characters);
    kept.losses.foreignBytes = ProtectBytes(text);

    PageRequest request;
    request.keepsText = true;
    request.values = values;
    request.inLineTags = inLineTags;
    request.xmlDeclaration = kept.encoding.declaration;
    LineLosses lines;
    size_t moved = 0;
    if (const std::optional<XmlTreeText> tree = KeptTreeOfBook(text, request, lines, moved)) {
        kept.hasTree = true;
        const bool declared = tree->text.starts_with(request.xmlDeclaration);
        if (FindXmlDeclaration(tree->text, declared ? request.xmlDeclaration.size() : 0) != std::string::npos)
            ++kept.losses.misplacedPictures;
        kept.page = PageWithTree(*tree, request);
    } else {
        lines = {};
        kept.losses.controls += BlankTabs(text);
        kept.losses.controls
            += static_cast<size_t>(std::ranges::count(text, '\3') + std::ranges::count(text, '\4'));
        text = PageAmpersands(KeptTreeLines(text, "\r", inLineTags, lines));
        kept.page = PageOfPlainLines(text, request);
    }
    kept.losses.lines = lines;
    kept.losses.movedElements = moved;
    return kept;
}

} // namespace vmk
