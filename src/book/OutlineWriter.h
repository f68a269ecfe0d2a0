#pragma once

#include "BookOutline.h"
#include "KeptLines.h"
#include "NonBreakingSpace.h"
#include "PaintedNames.h"
#include "XmlReference.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// Writes the lines of a text in common form to a sink, in the form that the parser's reading has: tags with
/// single blanks and double quotes, elements without content as one tag, joined lines.
namespace vmk::outline {

inline constexpr std::size_t None = std::string_view::npos;
inline constexpr std::string_view White = " \t\r\n";

/// Whether a text contains tabs or line ends; a text in common form has no other control characters.
inline bool HasLines(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// The common first bytes of U+2039 and U+203A.
inline constexpr std::string_view AngleQuoteFront = "\xe2\x80";

/// Whether a text begins with U+2039 or U+203A.
/// \param text  valid UTF-8 that begins with the first byte of these characters
inline bool IsAngleQuote(std::string_view text)
{
    return text[1] == AngleQuoteFront[1] && (text[2] == '\xb9' || text[2] == '\xba');
}

/// How the name of an attribute is painted.
enum class NamePaint
{
    Nothing,
    Name, ///< only the name
    NameAndValue
};

/// The attributes that are painted, without the blank before the name.
inline NamePaint PaintOf(std::string_view name)
{
    if (std::ranges::find(PaintedNamespaces, name) != PaintedNamespaces.end())
        return NamePaint::Name;
    return name.ends_with(":href") || std::ranges::find(PaintedAttributes, name) != PaintedAttributes.end()
        ? NamePaint::NameAndValue
        : NamePaint::Nothing;
}

/// The length of the double quote or of the reference to it at the start of a text; 0 for other texts.
inline std::size_t QuoteLength(std::string_view text)
{
    constexpr std::string_view Reference = "&quot;";
    if (text[0] == '"')
        return 1;
    if (text.starts_with(Reference))
        return Reference.size();
    const std::optional<XmlReference> numeric = NumericReference(text);
    return numeric && numeric->character == '"' ? numeric->length : 0;
}

/// The name of the tag at the start of a text; empty for a comment.
inline std::string_view NameAt(std::string_view text)
{
    const std::size_t start = text.starts_with("</") ? 2 : 1;
    return text[start] == '!' ? std::string_view()
                              : text.substr(start, text.find_first_of(" \t\r\n/>", start) - start);
}

/// Writes one line of a text in common form.
/// \tparam Sink  receives the pieces of the line in order: text, white space between tags, characters with a
/// form of
///               their own (`character`, `angle`, `rawAngle`, `angleQuote`, `nonBreaking`, `ampersand`), the
///               brackets of tags and comments, and the starts and the end of painted names and values
template <class Sink>
class OutlineWriter
{
public:
    OutlineWriter(Sink& target, bool attributes, const BookOutline& bookOutline)
        : sink(target)
        , paintsAttributes(attributes)
        , outline(bookOutline)
    {
    }

    /// \param piece     a line of the text
    /// \param position  of the line in the text, in bytes
    void write(std::string_view piece, std::size_t position);

private:
    [[nodiscard]] std::string_view joinedText(std::string_view line, std::size_t from, std::size_t to);
    [[nodiscard]] bool isWord(std::string_view name) const;
    void writeDeclaration(std::string_view declaration);
    void writeText(std::string_view text);
    void writeWhite(std::string_view white, std::size_t position, std::string_view next);
    void writeReference(std::string_view text, std::size_t& at);
    void writeQuote(std::string_view text, std::size_t from, std::size_t at);
    std::size_t writeComment(std::string_view line, std::size_t at);
    std::size_t writeTag(std::string_view line, std::size_t at);
    [[nodiscard]] std::size_t emptyEnd(std::string_view line, std::size_t at, std::string_view name) const;
    void writeAttribute(std::string_view name, std::string_view value);

    Sink& sink;
    const bool paintsAttributes;
    const BookOutline& outline;
    std::size_t openTag = None; ///< the position of the last tag in the line if it is a start tag
    std::string_view lastName; ///< of the last tag; empty after a comment
    bool inValue = false; ///< a painted one of a text
    std::string joined;
};

template <class Sink>
void OutlineWriter<Sink>::write(std::string_view piece, std::size_t position)
{
    if (piece.starts_with("<?"))
        return writeDeclaration(piece);
    for (std::size_t at = 0; at < piece.size();) {
        if (piece[at] == '<') {
            at = piece[at + 1] == '!' ? writeComment(piece, at) : writeTag(piece, at);
            continue;
        }
        const std::size_t next = std::min(piece.find('<', at), piece.size());
        const std::string_view text = piece.substr(at, next - at);
        if (text.find_first_not_of(White) != None)
            writeText(!HasLines(text) ? text : joinedText(piece, at, next));
        else if (next < piece.size())
            writeWhite(text, position + at, piece.substr(next));
        at = next;
    }
}

template <class Sink>
void OutlineWriter<Sink>::writeDeclaration(std::string_view declaration)
{
    sink.startTag();
    writeText(declaration.substr(1, declaration.size() - 2));
    sink.endTag();
}

/// Joins the lines of the text from `from` to `to`, between two tags.
template <class Sink>
std::string_view OutlineWriter<Sink>::joinedText(std::string_view line, std::size_t from, std::size_t to)
{
    const bool beforeEnd = line[to + 1] == '/';
    const TextSides sides{openTag == None || isWord(lastName), !beforeEnd || isWord(NameAt(line.substr(to)))};
    joined = '>';
    AppendJoinedText(line.substr(from, to - from), sides, joined);
    return Sink::spaced(joined).substr(1);
}

/// Whether the element with this name may be part of a word.
template <class Sink>
bool OutlineWriter<Sink>::isWord(std::string_view name) const
{
    return std::ranges::find(outline.wordNames, name) != outline.wordNames.end();
}

/// Writes text; a run of blanks becomes one blank.
template <class Sink>
void OutlineWriter<Sink>::writeText(std::string_view text)
{
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        if (c == ' ' && at + 1 < text.size() && text[at + 1] == ' ') {
            sink.text(text.substr(copied, at + 1 - copied));
            at = copied = std::min(text.find_first_not_of(' ', at), text.size());
        } else if (c == '"' || c == '&') {
            const std::size_t quote = QuoteLength(text.substr(at));
            if (quote > 0) {
                writeQuote(text, copied, at);
                at += quote;
            } else {
                sink.text(text.substr(copied, at - copied));
                writeReference(text, at);
            }
            copied = at;
        } else if (c == Utf8Nbsp[0] && text[at + 1] == Utf8Nbsp[1]) {
            sink.text(text.substr(copied, at - copied));
            sink.nonBreaking();
            at = copied = at + 2;
        } else if (c == '>') {
            sink.text(text.substr(copied, at - copied));
            sink.rawAngle();
            copied = ++at;
        } else if (c == AngleQuoteFront[0] && IsAngleQuote(text.substr(at))) {
            sink.text(text.substr(copied, at - copied));
            sink.angleQuote(text.substr(at, 3));
            at = copied = at + 3;
        } else {
            ++at;
        }
    }
    sink.text(text.substr(copied));
}

/// Writes the text before a double quote, and the quote, with the paint of a name and a value.
/// \param from  the end of the text that is already written
/// \param at    the position of the quote
template <class Sink>
void OutlineWriter<Sink>::writeQuote(std::string_view text, std::size_t from, std::size_t at)
{
    const bool closes = std::exchange(inValue, false);
    const std::optional<PaintedName> painted
        = paintsAttributes && !closes ? PaintedNameAtEnd(text.substr(0, at)) : std::nullopt;
    const std::size_t end = painted ? at - painted->name.size() : at;
    sink.text(text.substr(from, end - from));
    if (painted) {
        sink.startName();
        sink.text(painted->name);
        sink.endMark();
        inValue = painted->withValue;
        if (inValue)
            sink.startValue();
    }
    sink.text("\"");
    if (closes)
        sink.endMark();
}

template <class Sink>
void OutlineWriter<Sink>::writeReference(std::string_view text, std::size_t& at)
{
    const std::string_view rest = text.substr(at);
    if (const std::optional<XmlReference> numeric = NumericReference(rest)) {
        at += numeric->length;
        return sink.character(numeric->character);
    }
    at += rest.find(';') + 1;
    if (rest[1] == 'l')
        sink.angle(true);
    else if (rest[1] == 'g')
        sink.angle(false);
    else if (rest[2] == 'p')
        sink.text("'");
    else
        sink.ampersand();
}

/// Writes white space between two tags of a line, without its line ends. Line ends alone become a blank
/// between elements that are parts of words, and in some other positions (`BookOutline::blanks`).
/// \param position  of the white space in the text
/// \param next      the text from the next tag on
template <class Sink>
void OutlineWriter<Sink>::writeWhite(std::string_view white, std::size_t position, std::string_view next)
{
    std::string kept;
    for (const char c : white) {
        if (c == '\t' || (c == ' ' && !kept.ends_with(' ')))
            kept += c;
    }
    const auto isBlank = [this, position] { return std::ranges::binary_search(outline.blanks, position); };
    if (kept.empty() && ((isWord(lastName) && isWord(NameAt(next))) || isBlank()))
        kept = ' ';
    if (!kept.empty())
        sink.white(kept);
}

template <class Sink>
std::size_t OutlineWriter<Sink>::writeComment(std::string_view line, std::size_t at)
{
    const std::size_t end = line.find('>', at) + 1;
    std::string_view comment = line.substr(at, end - at);
    if (HasLines(comment)) {
        joined = '>';
        AppendJoinedMarkup(comment, joined);
        comment = Sink::spaced(joined).substr(1);
    }
    sink.startComment();
    writeText(comment.substr(1, comment.size() - 2));
    sink.endComment();
    openTag = None;
    lastName = {};
    return end;
}

/// Writes the tag at `at`, and its end tag if that follows; returns the position after it.
template <class Sink>
std::size_t OutlineWriter<Sink>::writeTag(std::string_view line, std::size_t at)
{
    const bool isEnd = line[at + 1] == '/';
    const std::size_t nameStart = at + (isEnd ? 2 : 1);
    std::size_t i = std::min(line.find_first_of(" \t\r\n/>", nameStart), line.size());
    sink.startTag();
    sink.text(line.substr(at + 1, i - at - 1));
    bool isEmpty = false;
    while (line[i] != '>') {
        if (White.find(line[i]) != None) {
            ++i;
        } else if (line[i] == '/') {
            isEmpty = true;
            ++i;
        } else {
            const std::size_t equals = line.find('=', i);
            const std::size_t close = line.find(line[equals + 1], equals + 2);
            writeAttribute(line.substr(i, equals - i), line.substr(equals + 2, close - equals - 2));
            i = close + 1;
        }
    }
    ++i;
    if (!isEnd && !isEmpty) {
        const std::size_t nameEnd = line.find_first_of(" \t\r\n>", nameStart);
        const std::size_t end = emptyEnd(line, i, line.substr(nameStart, nameEnd - nameStart));
        isEmpty = end > i;
        i = end;
    }
    if (isEmpty)
        sink.text("/");
    sink.endTag();
    openTag = isEnd || isEmpty ? None : at;
    lastName = NameAt(line.substr(at));
    return i;
}

/// An element without content is written as one tag. A blank is content of an in-line element.
/// \param at  the position after the start tag
/// \return the position after the end tag, or `at` if the element has content
template <class Sink>
std::size_t OutlineWriter<Sink>::emptyEnd(std::string_view line, std::size_t at, std::string_view name) const
{
    const std::size_t next = line.find_first_not_of(White, at);
    if (next == None || !line.substr(next).starts_with("</"))
        return at;
    const bool isBlank = line.substr(at, next - at).find(' ') != None;
    if (isBlank && std::ranges::find(outline.inLineNames, name) != outline.inLineNames.end())
        return at;
    return line.find('>', next) + 1;
}

template <class Sink>
void OutlineWriter<Sink>::writeAttribute(std::string_view name, std::string_view value)
{
    const NamePaint paint = paintsAttributes ? PaintOf(name) : NamePaint::Nothing;
    if (paint == NamePaint::Nothing) {
        sink.text(" ");
        sink.text(name);
        sink.text("=\"");
        writeText(value);
        sink.text("\"");
        return;
    }
    const std::size_t colon = name.ends_with(":href") ? name.size() - 5 : 0;
    if (colon > 0) {
        sink.text(" ");
        sink.text(name.substr(0, colon));
    }
    sink.startName();
    if (colon == 0)
        sink.text(" ");
    sink.text(name.substr(colon));
    sink.text("=");
    sink.endMark();
    const bool paintsValue = paint == NamePaint::NameAndValue;
    if (paintsValue)
        sink.startValue();
    sink.text("\"");
    writeText(value);
    sink.text("\"");
    if (paintsValue)
        sink.endMark();
}

} // namespace vmk::outline
