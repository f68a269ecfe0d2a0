#include "OutlinePage.h"

#include "DisplayCharacters.h"
#include "LargeBuffers.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "OutlineWriter.h"

#include <algorithm>
#include <array>

namespace vmk {

namespace {

/// U+2039 and U+203A.
constexpr std::string_view LeftMark = "\xe2\x80\xb9";
constexpr std::string_view RightMark = "\xe2\x80\xba";
constexpr std::uint32_t NonBreaking = 0xA0;
constexpr char16_t Guard = 0xFE0C; ///< `DisplayGuard`

/// Writes a character of a reference to a sink of UTF-8.
template <class Sink>
void WriteCharacter(std::uint32_t c, Sink& sink)
{
    if (c == '<' || c == '>')
        sink.angle(c == '<');
    else if (c == '&')
        sink.ampersand();
    else if (c == NonBreaking)
        sink.nonBreaking();
    else
        sink.text(QString::fromUcs4(std::array{char32_t(c)}.data(), 1).toStdString());
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
    void character(std::uint32_t c) { WriteCharacter(c, *this); }
    void angle(bool left) { xml += left ? "&lt;" : "&gt;"; }
    void rawAngle() { angle(false); }
    void angleQuote(std::string_view quote) { xml += quote; }
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
    PageSink(const TagPaint& tagPaint, bool showsNbsp, std::string& target)
        : paint(tagPaint)
        , showNbsp(showsNbsp)
        , page(target)
    {
    }

    void text(std::string_view piece) { page += piece; }
    void white(std::string_view piece) { page += piece; }
    static std::string_view spaced(std::string& piece) { return piece; }
    void character(std::uint32_t c) { WriteCharacter(c, *this); }
    void angle(bool left) { page += left ? LeftMark : RightMark; }
    /// Written as the end of a tag that has no start.
    void rawAngle() { page += paint.end; }
    void angleQuote(std::string_view quote)
    {
        page += quote;
        page += DisplayGuard;
    }
    void nonBreaking()
    {
        if (showNbsp) {
            page += NbspMarker;
        } else {
            page += Utf8Nbsp;
            page += DisplayGuard;
        }
    }
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
    const bool showNbsp;
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
    LineSink(TagId tag, TagId name, TagId value, TagId comment, bool showsNbsp)
        : showNbsp(showsNbsp)
        , tagMark(tag)
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
    void rawAngle() { units.push_back(u'>'); }
    void angleQuote(std::string_view quote)
    {
        text(quote);
        units.push_back(Guard);
    }
    void nonBreaking()
    {
        if (showNbsp)
            units.push_back(char16_t(NbspMarker));
        else
            units.append({char16_t(NonBreaking), Guard});
    }
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

    const bool showNbsp;
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
    LinePtr line = MakeLine(Line{block, text.toString(), marks});
    units.clear();
    marks.clear();
    return line;
}

} // namespace

std::string_view OutlinedText::line(std::size_t index) const
{
    if (index == 0)
        return declaration;
    const std::size_t start = position(index);
    const std::size_t end
        = index < outline.lines.size() ? std::size_t(outline.lines[index].position) : outline.end;
    return std::string_view(text).substr(start, end - start);
}

std::size_t OutlinedText::position(std::size_t index) const
{
    return index == 0 ? 0 : std::size_t(outline.lines[index - 1].position);
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
    , showNbsp(values.showNbsp)
{
    for (std::size_t depth = 0; depth <= book.outline.deepest; ++depth)
        starts.push_back(LineStart(depth, values));
}

void OutlineDivs::append(std::size_t first, std::size_t last, std::string& page) const
{
    PageSink sink(paint, showNbsp, page);
    outline::OutlineWriter<PageSink> writer(sink, paint.attributes, book.outline);
    for (std::size_t i = first; i < last; ++i) {
        page += i == 0 ? std::string_view("<DIV id=FirstDiv>") : std::string_view(starts[book.depth(i)]);
        writer.write(book.line(i), book.position(i));
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
    outline::OutlineWriter<XmlSink> writer(sink, false, book.outline);
    xml += book.declaration;
    for (std::size_t i = 1; i < book.lineCount(); ++i) {
        xml += CrLf;
        xml.append(book.depth(i), '\t');
        writer.write(book.line(i), book.position(i));
    }
    return xml;
}

OutlineLines::OutlineLines(std::shared_ptr<OutlinedText> outlined, const DisplayValues& values,
                           TagTable& tags)
    : book(std::move(outlined))
    , showNbsp(values.showNbsp)
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
    LineSink sink(tagMark, nameMark, valueMark, commentMark, showNbsp);
    outline::OutlineWriter<LineSink> writer(sink, paintsAttributes, book->outline);
    for (std::size_t i = first; i < last; ++i) {
        writer.write(book->line(i), book->position(i));
        lines.push_back(sink.take(i == 0 ? firstBlock : blocks[book->depth(i)]));
    }
    return lines;
}

} // namespace vmk
