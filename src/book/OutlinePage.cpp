#include "OutlinePage.h"

#include "KeptLines.h"
#include "LargeBuffers.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "XmlReference.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vmk {

namespace {

constexpr std::size_t None = std::string_view::npos;
constexpr std::string_view White = " \t\r\n";
/// U+2039 and U+203A.
constexpr std::string_view LeftMark = "\xe2\x80\xb9";
constexpr std::string_view RightMark = "\xe2\x80\xba";

constexpr std::uint32_t NonBreaking = 0xA0;

/// Whether a text contains tabs or line ends; a text in common form has no other control characters.
bool HasLines(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// How the name of an attribute is painted.
enum class NamePaint
{
    Nothing,
    Name, ///< only the name
    NameAndValue
};

/// The attributes that are painted, without the blank before the name.
NamePaint PaintOf(std::string_view name)
{
    constexpr std::array<std::string_view, 9> Painted
        = {"id", "href", "type", "version", "encoding", "match", "value", "name", "number"};
    if (name == "xmlns" || name == "xmlns:l")
        return NamePaint::Name;
    return name.ends_with(":href") || std::ranges::find(Painted, name) != Painted.end()
        ? NamePaint::NameAndValue
        : NamePaint::Nothing;
}

/// The name of the tag at the start of a text; empty for a comment.
std::string_view NameAt(std::string_view text)
{
    const std::size_t start = text.starts_with("</") ? 2 : 1;
    return text[start] == '!' ? std::string_view()
                              : text.substr(start, text.find_first_of(" \t\r\n/>", start) - start);
}

/// Writes one line of a text in common form.
/// \tparam Sink  receives the pieces of the line in order
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

    /// \param piece  a line of the text
    void write(std::string_view piece);

private:
    [[nodiscard]] std::string_view joinedText(std::string_view line, std::size_t from, std::size_t to);
    [[nodiscard]] bool isWord(std::string_view name) const;
    void writeText(std::string_view text);
    void writeWhite(std::string_view white, std::string_view next);
    void writeReference(std::string_view text, std::size_t& at);
    std::size_t writeComment(std::string_view line, std::size_t at);
    std::size_t writeTag(std::string_view line, std::size_t at);
    [[nodiscard]] std::size_t emptyEnd(std::string_view line, std::size_t at, std::string_view name) const;
    void writeAttribute(std::string_view name, std::string_view value);

    Sink& sink;
    const bool paintsAttributes;
    const BookOutline& outline;
    std::size_t openTag = None; ///< the position of the last tag in the line if it is a start tag
    std::string_view lastName; ///< of the last tag; empty after a comment
    std::string joined;
};

template <class Sink>
void OutlineWriter<Sink>::write(std::string_view piece)
{
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
            writeWhite(text, piece.substr(next));
        at = next;
    }
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
        } else if (c == '&') {
            sink.text(text.substr(copied, at - copied));
            writeReference(text, at);
            copied = at;
        } else if (c == Utf8Nbsp[0] && text[at + 1] == Utf8Nbsp[1]) {
            sink.text(text.substr(copied, at - copied));
            sink.nonBreaking();
            at = copied = at + 2;
        } else {
            ++at;
        }
    }
    sink.text(text.substr(copied));
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
    else if (rest[1] == 'q')
        sink.text("\"");
    else if (rest[2] == 'p')
        sink.text("'");
    else
        sink.ampersand();
}

/// Writes white space between two tags of a line, without its line ends. Line ends alone become a blank
/// between elements that are parts of words. \param next  the text from the next tag on
template <class Sink>
void OutlineWriter<Sink>::writeWhite(std::string_view white, std::string_view next)
{
    std::string kept;
    for (const char c : white) {
        if (c == '\t' || (c == ' ' && !kept.ends_with(' ')))
            kept += c;
    }
    if (kept.empty() && isWord(lastName) && isWord(NameAt(next)))
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
    std::size_t i = std::min(line.find_first_of(" \t\r\n/>?", nameStart + (line[nameStart] == '?' ? 1 : 0)),
                             line.size());
    sink.startTag();
    sink.text(line.substr(at + 1, i - at - 1));
    bool isEmpty = false;
    while (line[i] != '>') {
        if (White.find(line[i]) != None) {
            ++i;
        } else if (line[i] == '/' || line[i] == '?') {
            isEmpty = line[i] == '/';
            if (!isEmpty)
                sink.text("?");
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

/// An element without content is written as one tag. Returns the position after its end tag, or `at` if it
/// has content; a blank is content of an in-line element. \param at  the position after the start tag
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

void AppendUtf8(std::uint32_t c, std::string& text)
{
    text += QString::fromUcs4(std::array{char32_t(c)}.data(), 1).toStdString();
}

/// Appends XML.
class XmlSink
{
public:
    explicit XmlSink(std::string& target)
        : xml(target)
    {
    }

    void text(std::string_view piece) { xml += piece; }
    void white(std::string_view piece) { xml += piece; }
    static std::string_view spaced(std::string& piece) { return piece; }
    void character(std::uint32_t c)
    {
        if (c == '<' || c == '>')
            angle(c == '<');
        else if (c == '&')
            ampersand();
        else
            AppendUtf8(c, xml);
    }
    void angle(bool left) { xml += left ? "&lt;" : "&gt;"; }
    void nonBreaking() { xml += Utf8Nbsp; }
    void ampersand() { xml += "&amp;"; }
    void startTag() { xml += '<'; }
    void endTag() { xml += '>'; }
    void startComment() { xml += '<'; }
    void endComment() { xml += '>'; }
    // Nothing is painted.
    static void startName() { }
    static void startValue() { }
    static void endMark() { }

private:
    std::string& xml;
};

/// Appends to a page.
class PageSink
{
public:
    PageSink(const TagPaint& tagPaint, std::string& target)
        : paint(tagPaint)
        , page(target)
    {
    }

    void text(std::string_view piece) { page += piece; }
    void white(std::string_view piece) { page += piece; }
    static std::string_view spaced(std::string& piece) { return piece; }
    void character(std::uint32_t c)
    {
        if (c == '<' || c == '>')
            angle(c == '<');
        else if (c == '&')
            ampersand();
        else if (c == NonBreaking)
            nonBreaking();
        else
            AppendUtf8(c, page);
    }
    void angle(bool left) { page += left ? LeftMark : RightMark; }
    void nonBreaking() { page += NbspMarker; }
    void ampersand() { page += "&amp;"; }
    void startTag() { page += paint.start; }
    void endTag() { page += paint.end; }
    void startComment() { page += CommentStart; }
    void endComment() { page += CommentEnd; }
    void startName() { page += NameStart; }
    void startValue() { page += ValueStart; }
    void endMark() { page += FontEnd; }

private:
    const TagPaint& paint;
    std::string& page;
};

/// The start tag of the line of a page.
std::string LineStart(std::size_t depth, const DisplayValues& values)
{
    if (depth == 0)
        return "<DIV>";
    return "<DIV style=\"MARGIN-LEFT: " + std::to_string(static_cast<long long>(depth) * values.nodeShift)
        + "px\">";
}

/// Makes the text and the marks of one line.
class LineSink
{
public:
    LineSink(TagId tag, TagId name, TagId value, TagId comment)
        : tagMark(tag)
        , nameMark(name)
        , valueMark(value)
        , commentMark(comment)
    {
    }

    void text(std::string_view piece);
    void white(std::string_view) { units.push_back(u' '); }
    /// In a line, a run of blanks and tabs is one blank.
    static std::string_view spaced(std::string& piece);
    void character(std::uint32_t c);
    void angle(bool left) { units.push_back(left ? u'\u2039' : u'\u203a'); }
    void nonBreaking() { units.push_back(char16_t(NbspMarker)); }
    void ampersand() { units.push_back(u'&'); }
    void startTag()
    {
        if (tagMark != NoTag)
            marks.push_back(Mark::opening(position(), tagMark));
        units.push_back(u'<');
    }
    void endTag()
    {
        units.push_back(u'>');
        if (tagMark != NoTag)
            marks.push_back(Mark::closing(position(), tagMark));
    }
    void startComment()
    {
        start(commentMark);
        units.push_back(u'<');
    }
    void endComment()
    {
        units.push_back(u'>');
        endMark();
    }
    void startName() { start(nameMark); }
    void startValue() { start(valueMark); }
    void endMark()
    {
        const TagId tag = marks.back().tag;
        marks.push_back(Mark::closing(position(), tag));
    }

    /// Returns the line and begins the next one.
    [[nodiscard]] LinePtr take(TagId block);

private:
    [[nodiscard]] int position() const { return static_cast<int>(units.size()); }
    void start(TagId tag) { marks.push_back(Mark::opening(position(), tag)); }

    const TagId tagMark;
    const TagId nameMark;
    const TagId valueMark;
    const TagId commentMark;
    std::u16string units;
    std::vector<Mark> marks;
};

/// Decodes valid UTF-8.
void LineSink::text(std::string_view piece)
{
    const std::size_t before = units.size();
    units.resize(before + piece.size());
    char16_t* to = units.data() + before;
    const auto* from = reinterpret_cast<const unsigned char*>(piece.data());
    const unsigned char* end = from + piece.size();
    const auto trail = [&from](std::size_t i) { return from[i] & 0x3FU; };
    while (from < end) {
        const unsigned lead = *from;
        if (lead < 0x80) {
            *to++ = static_cast<char16_t>(lead);
            ++from;
        } else if (lead < 0xE0) {
            *to++ = static_cast<char16_t>((lead & 0x1FU) << 6U | trail(1));
            from += 2;
        } else if (lead < 0xF0) {
            *to++ = static_cast<char16_t>((lead & 0x0FU) << 12U | trail(1) << 6U | trail(2));
            from += 3;
        } else {
            const char32_t c = (lead & 0x07U) << 18U | trail(1) << 12U | trail(2) << 6U | trail(3);
            *to++ = QChar::highSurrogate(c);
            *to++ = QChar::lowSurrogate(c);
            from += 4;
        }
    }
    units.resize(static_cast<std::size_t>(to - units.data()));
}

std::string_view LineSink::spaced(std::string& piece)
{
    std::ranges::replace(piece, '\t', ' ');
    piece.erase(std::unique(piece.begin(), piece.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
                piece.end());
    return piece;
}

void LineSink::character(std::uint32_t c)
{
    if (c == '<' || c == '>')
        angle(c == '<');
    else if (c == NonBreaking)
        nonBreaking();
    else if (c < 0x10000)
        units.push_back(static_cast<char16_t>(c));
    else
        units.append({QChar::highSurrogate(c), QChar::lowSurrogate(c)});
}

LinePtr LineSink::take(TagId block)
{
    const QStringView text(units.data(), static_cast<qsizetype>(units.size()));
    LinePtr line = MakeLine(Line{block, text.toString(), std::vector<Mark>(marks.begin(), marks.end())});
    units.clear();
    marks.clear();
    return line;
}

} // namespace

std::string_view OutlinedText::line(std::size_t index) const
{
    if (index == 0)
        return declaration;
    const std::size_t start = outline.lines[index - 1].position;
    const std::size_t end
        = index < outline.lines.size() ? std::size_t(outline.lines[index].position) : outline.end;
    return std::string_view(text).substr(start, end - start);
}

std::size_t OutlinedText::depth(std::size_t index) const
{
    return index == 0 ? 0 : std::size_t(outline.lines[index - 1].depth);
}

void OutlinedText::passed(Reader reader, std::size_t line)
{
    constexpr std::size_t LeastBytes = std::size_t(1) << 20U;
    const std::lock_guard lock(guard);
    const bool isAll = line > outline.lines.size();
    passedBytes[static_cast<std::size_t>(reader)]
        = isAll ? text.size() : std::size_t(outline.lines[line - 1].position);
    const std::size_t end = std::ranges::min(passedBytes);
    if (end < released + LeastBytes)
        return;
    ReleasePages(text.data() + released, end - released);
    released = end;
}

OutlineDivs::OutlineDivs(const OutlinedText& outlined, const DisplayValues& values)
    : book(outlined)
    , paint(TagPaint::Of(values))
{
    for (std::size_t depth = 0; depth <= book.outline.deepest; ++depth)
        starts.push_back(LineStart(depth, values));
}

void OutlineDivs::append(std::size_t first, std::size_t last, std::string& page) const
{
    PageSink sink(paint, page);
    OutlineWriter<PageSink> writer(sink, paint.attributes, book.outline);
    for (std::size_t i = first; i < last; ++i) {
        page += i == 0 ? std::string_view("<DIV id=FirstDiv>") : std::string_view(starts[book.depth(i)]);
        writer.write(book.line(i));
        page += i + 1 < book.lineCount() ? "</DIV>\r" : "</DIV>";
    }
}

std::string XmlOfOutline(const OutlinedText& book)
{
    std::size_t size = book.text.size() + book.declaration.size();
    for (const BookOutline::LineStart& line : book.outline.lines)
        size += sizeof(CrLf) + std::size_t(line.depth);
    std::string xml = StringWithRoom(size);
    XmlSink sink(xml);
    OutlineWriter<XmlSink> writer(sink, false, book.outline);
    xml += book.declaration;
    for (std::size_t i = 1; i < book.lineCount(); ++i) {
        xml += CrLf;
        xml.append(book.depth(i), '\t');
        writer.write(book.line(i));
    }
    return xml;
}

OutlineLines::OutlineLines(std::shared_ptr<OutlinedText> outlined, const DisplayValues& values,
                           TagTable& tags)
    : book(std::move(outlined))
{
    const TagPaint paint = TagPaint::Of(values);
    paintsAttributes = paint.attributes;
    if (paint.start.starts_with("<SPAN"))
        tagMark = tags.intern(u"SPAN", u" class=t");
    else if (paint.start.starts_with("<B>"))
        tagMark = tags.intern(u"B", {});
    nameMark = tags.intern(u"FONT", u" class=n");
    valueMark = tags.intern(u"FONT", u" class=v");
    commentMark = tags.intern(u"SPAN", u" class=c");
    firstBlock = tags.intern(u"DIV", u" id=FirstDiv");
    for (std::size_t depth = 0; depth <= book->outline.deepest; ++depth) {
        const std::string start = LineStart(depth, values);
        constexpr std::size_t NameLength = 4; // "<DIV"
        const std::string attributes = start.substr(NameLength, start.size() - NameLength - 1);
        blocks.push_back(tags.intern(u"DIV", QString::fromStdString(attributes)));
    }
}

std::vector<LinePtr> OutlineLines::make(std::size_t first, std::size_t last) const
{
    std::vector<LinePtr> lines;
    lines.reserve(last - first);
    LineSink sink(tagMark, nameMark, valueMark, commentMark);
    OutlineWriter<LineSink> writer(sink, paintsAttributes, book->outline);
    for (std::size_t i = first; i < last; ++i) {
        writer.write(book->line(i));
        lines.push_back(sink.take(i == 0 ? firstBlock : blocks[book->depth(i)]));
    }
    return lines;
}

} // namespace vmk
