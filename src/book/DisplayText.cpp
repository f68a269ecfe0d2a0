#include "DisplayText.h"

#include "BookVariables.h"
#include "DisplayCharacters.h"
#include "DisplayDocument.h"
#include "LargeBuffers.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "TextFunctions.h"
#include "XmlDeclarations.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace vmk {

namespace {

constexpr std::string_view LineEnd = CrLf;
constexpr char16_t NonBreakingSpace = 0xA0;
constexpr char16_t LeftAngleMark = 0x2039;
constexpr char16_t RightAngleMark = 0x203A;

/// The maximum number of bytes for one UTF-16 unit: `&amp;`.
constexpr size_t LongestUnit = 5;

char* Put(char* to, std::string_view bytes)
{
    return std::ranges::copy(bytes, to).out;
}

/// Writes the last six bits of `bits` as a continuation byte.
char* PutTail(char* to, unsigned int bits)
{
    *to = static_cast<char>(0x80U | (bits & 0x3FU));
    return to + 1;
}

/// Writes a character from U+0800 on; moves `at` after it.
char* PutLongCharacter(char* to, const char16_t*& at, const char16_t* end)
{
    const unsigned int unit = *at++;
    if (!QChar::isSurrogate(unit)) {
        *to++ = static_cast<char>(0xE0U | unit >> 12U);
        return PutTail(PutTail(to, unit >> 6U), unit);
    }
    if (!QChar::isHighSurrogate(unit) || at == end || !QChar::isLowSurrogate(*at))
        return Put(to, "?"); // as the writer of the page does
    const unsigned int character = QChar::surrogateToUcs4(static_cast<char16_t>(unit), *at++);
    *to++ = static_cast<char>(0xF0U | character >> 18U);
    return PutTail(PutTail(PutTail(to, character >> 12U), character >> 6U), character);
}

/// Writes the text between two tags; returns the end of the output. Returns null for text that the rules of a
/// page could read differently: with a line end in it, or half a surrogate pair next to a tag.
char* PutRun(char* to, QStringView run, AngleMarks marks)
{
    if (!run.isEmpty() && run.back().isHighSurrogate())
        return nullptr;
    const char16_t* at = run.utf16();
    const char16_t* const end = at + run.size();
    while (at != end) {
        const char16_t unit = *at;
        const bool isAngleMark = unit == LeftAngleMark || unit == RightAngleMark;
        if (unit == u'\r') {
            return nullptr;
        } else if (unit == u'&') {
            to = Put(to, "&amp;");
        } else if (unit == char16_t(NbspMarker)) {
            to = Put(to, Utf8Nbsp);
        } else if (unit == NonBreakingSpace) {
            *to++ = ' ';
        } else if (unit < 0x80) {
            *to++ = static_cast<char>(unit);
        } else if (unit < 0x800) {
            *to++ = static_cast<char>(0xC0U | unit >> 6U);
            to = PutTail(to, unit);
        } else if (isAngleMark && marks == AngleMarks::Restore) {
            to = Put(to, unit == LeftAngleMark ? "&lt;" : "&gt;");
        } else {
            to = PutLongCharacter(to, at, end);
            continue;
        }
        ++at;
    }
    return to;
}

/// Appends a line and its end to `text`, using `room` as a buffer. Returns false, with nothing appended, if
/// `PutRun` returns null.
bool AppendLine(std::string& text, const Line& line, AngleMarks marks, std::string& room)
{
    const size_t most = LongestUnit * static_cast<size_t>(line.text.size()) + LineEnd.size();
    if (room.size() < most)
        room.resize(2 * most);
    const QStringView whole = line.text;
    char* to = room.data();
    qsizetype from = 0;
    for (const Mark& mark : line.marks) {
        to = PutRun(to, whole.sliced(from, mark.pos - from), marks);
        if (to == nullptr)
            return false;
        from = mark.pos;
    }
    to = PutRun(to, whole.sliced(from), marks);
    if (to == nullptr)
        return false;
    text.append(room.data(), Put(to, LineEnd));
    return true;
}

/// Whether the removal of mark-up removes exactly this tag.
bool IsPlain(const Tag& tag)
{
    return !tag.name.contains(u'<') && !tag.name.contains(u'>') && !tag.attributes.contains(u'<')
        && !tag.attributes.contains(u'>');
}

/// Whether `TextOfPage` finds no mark-up in the page's lines except their own tags. None of these is an end
/// of the head, because no reader keeps that element.
bool HasPlainTags(const DisplayDocument& document)
{
    const TagTable& tags = document.tags();
    for (TagId id = 0; id < static_cast<TagId>(tags.size()); ++id)
        if (!IsPlain(tags[id]))
            return false;
    return true;
}

} // namespace

std::optional<std::string> TextOfLines(const DisplayDocument& document, AngleMarks marks)
{
    if (!HasPlainTags(document))
        return std::nullopt;
    size_t units = 0;
    for (int i = 0; i < document.lineCount(); ++i)
        units += static_cast<size_t>(document.line(i).text.size()) + LineEnd.size();
    // Enough for most books; the unused part is never touched.
    constexpr size_t BytesPerUnit = 2;
    std::string text = StringWithRoom(BytesPerUnit * units);
    text += TextOfPage(document.pageFront().toStdString(), marks);
    std::string room;
    for (int i = 0; i < document.lineCount(); ++i)
        if (const Line& line = document.line(i); line.block != NoTag && !AppendLine(text, line, marks, room))
            return std::nullopt;
    return text;
}

namespace {

/// Returns the text of the display from the front of its page on, with every shown ampersand escaped.
std::string UnresolvedText(const DisplayDocument& document, AngleMarks marks)
{
    std::optional<std::string> text = TextOfLines(document, marks);
    return text ? *std::move(text) : TextOfPage(document.savePage().toStdString(), marks);
}

/// Removes the text before the declaration. In a book that keeps its text, removes only white space and a
/// byte order mark.
void DropFront(std::string& text)
{
    constexpr std::string_view Mark = "\xef\xbb\xbf";
    const std::string front = ReplaceAll(text.substr(0, text.find('<')), Mark, {});
    if (!BookKeepsText || IsBlank(front))
        DropBeforeDeclaration(text);
}

/// The number of UTF-16 units of a UTF-8 text.
qsizetype UnitCount(std::string_view text)
{
    qsizetype units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        units += ((byte & 0xC0U) != 0x80 ? 1 : 0) + (byte >= 0xF0 ? 1 : 0);
    }
    return units;
}

} // namespace

std::string TextOfDisplay(const DisplayDocument& document, AngleMarks marks)
{
    std::string text = UnresolvedText(document, marks);
    DropFront(text);
    return ResolveDisplayText(std::move(text));
}

qsizetype DisplayOffset(const DisplayDocument& document, qsizetype textByte)
{
    const std::string whole = UnresolvedText(document, AngleMarks::Keep);
    std::string rest = whole;
    DropFront(rest);
    const size_t dropped = whole.size() - rest.size();
    const size_t place = dropped + UnresolvedOffset(rest, static_cast<size_t>(textByte));
    // The page begins with a text that the display does not show.
    const std::string front = TextOfPage(document.pageFront().toStdString(), AngleMarks::Keep);
    const size_t start = std::min(front.size(), place);

    // CR and LF in the text are one position in the display; "&amp;" is one character.
    constexpr std::string_view Ampersand = "&amp;";
    const std::string_view before = std::string_view(whole).substr(start, place - start);
    const auto uncounted
        = CountOccurrences(before, "\r") + (Ampersand.size() - 1) * CountOccurrences(before, Ampersand);
    return UnitCount(before) - static_cast<qsizetype>(uncounted);
}

} // namespace vmk
