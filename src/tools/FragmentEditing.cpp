#include "FragmentEditing.h"

#include "CodePages.h"
#include "DisplayPage.h"
#include "EditLines.h"
#include "NonBreakingSpace.h"
#include "TextFunctions.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView LineBreak = u"\r\n";
/// The element around each marker, which distinguishes it from the same character in the book.
constexpr QStringView MarkerElement = u"TT";
constexpr QStringView FontElement = u"FONT";
constexpr QStringView BlueFont = u"color=#0000FF";
constexpr QStringView GreyFont = u"color=#808080";

/// Removes line breaks after a blank: some displays wrap long lines there, the book does not.
QString WithoutWraps(QString html)
{
    return ReplaceAll(std::move(html), u" \r\n", u" ");
}

/// Replaces all lines of a document, as one undo step.
void ReplaceAllLines(DisplayDocument& document, std::vector<LinePtr> lines)
{
    const int last = int(lines.size()) - 1;
    const Position newEnd{last, int(lines.back()->text.size())};
    const EditMap map{{}, document.end(), newEnd};
    document.splice(0, document.lineCount(), std::move(lines), map);
}

/// Returns true if the display already contains the source.
bool IsUnchanged(DisplayDocument& display, const Fragment& fragment, const QString& source)
{
    if (WithoutWraps(page::createRange(display).htmlText()) == source)
        return true;
    return fragment.firstNode >= 1 && fragment.firstNode == fragment.lastNode
        && page::item(display, fragment.firstNode).outerHTML() == source;
}

/// Returns true if the lines of the fragment are still selected in the display.
bool IsStillSelected(DisplayDocument& display, const Fragment& fragment)
{
    const TextRange range = page::createRange(display);
    return NodeAtRangeStart(range) == fragment.firstNode && NodeAtRangeEnd(range) == fragment.lastNode;
}

/// Replaces the lines of the fragment by the source.
void ReplaceFragmentLines(DisplayDocument& display, const Fragment& fragment, const QString& source)
{
    if (fragment.firstNode == fragment.lastNode)
        page::item(display, fragment.firstNode).setOuterHTML(QString());
    else
        page::clear(display);
    page::item(display, fragment.firstNode).insertAdjacentHTML(Adjacent::BeforeBegin, source);
    // An empty source makes no second undo step.
    MarkEdit(source.isEmpty() ? 1 : 2);
}

// ---------------------------------------------------------------- painting

/// Makes the marks of painted lines, in order. A tag can continue on the next line.
class LinePainter
{
public:
    LinePainter(TagTable& tags)
        : markerTag(tags.intern(MarkerElement, u""))
        , blueTag(tags.intern(FontElement, BlueFont))
        , greyTag(tags.intern(FontElement, GreyFont))
        , marker(LineEndMarker())
    {
    }

    /// \param isMarker    for each character, whether it is a marker
    /// \param lastTagEnd  the offset after which no ">" follows in the text; a "<" from there on begins no
    /// tag
    [[nodiscard]] LinePtr paint(const Line& line, const std::vector<bool>& isMarker, int lastTagEnd)
    {
        std::vector<Mark> marks;
        const int length = int(line.text.size());
        const auto color = [&](int at) {
            if (line.text[at] == u'<')
                inTag = inTag || at < lastTagEnd;
            const bool blue = inTag;
            if (line.text[at] == u'>')
                inTag = false;
            return blue;
        };
        bool blueOpen = false;
        for (int at = 0; at < length; ++at) {
            const bool blue = color(at);
            if (blue != blueOpen)
                marks.push_back(blue ? Mark::opening(at, blueTag) : Mark::closing(at, blueTag));
            blueOpen = blue;
            if (line.text[at] != marker)
                continue;
            marks.push_back(Mark::opening(at, greyTag));
            if (isMarker[size_t(at)]) {
                marks.push_back(Mark::opening(at, markerTag));
                marks.push_back(Mark::closing(at + 1, markerTag));
            }
            marks.push_back(Mark::closing(at + 1, greyTag));
        }
        if (blueOpen)
            marks.push_back(Mark::closing(length, blueTag));
        return MakeLine({line.block, line.text, marks});
    }

private:
    TagId markerTag;
    TagId blueTag;
    TagId greyTag;
    QChar marker;
    bool inTag = false;
};

/// Returns for each character of a line whether it is a marker of the editor.
std::vector<bool> MarkersOf(const DisplayDocument& editor, const Line& line, QChar marker)
{
    std::vector<bool> isMarker(size_t(line.text.size()));
    int depth = 0;
    int from = 0;
    for (const Mark& mark : line.marks) {
        if (editor.tags()[mark.tag].name != MarkerElement)
            continue;
        if (mark.open && depth++ == 0)
            from = mark.pos;
        else if (!mark.open && --depth == 0)
            for (int at = from; at < mark.pos; ++at)
                isMarker[size_t(at)] = line.text[at] == marker;
    }
    return isMarker;
}

// ---------------------------------------------------------------- the page for reading

QString Char(int code)
{
    return {QChar(char16_t(code))};
}

} // namespace

QChar LineEndMarker()
{
    constexpr unsigned char MarkerCode = 128;
    return {CharacterOfByte(MarkerCode, SystemCodePage())};
}

QByteArray BlankFragmentPage()
{
    return "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\">"
           "<BODY LEFTMARGIN =2 RIGHTMARGIN =2 TOPMARGIN =2 BOTTOMMARGIN =2><DIV></DIV></BODY></HTML>"_ba;
}

Fragment TakeFragment(DisplayDocument& display, bool wholeLines)
{
    Fragment fragment;
    if (page::type(display) == "None"_L1)
        return fragment;
    if (wholeLines) {
        const SelectedNodes nodes = SelectNodes(display, {.select = true, .returnHtml = true});
        fragment.firstNode = nodes.first;
        fragment.lastNode = nodes.last;
        fragment.source = nodes.html;
        if (nodes.first > 0 && nodes.first == nodes.last)
            return fragment;
    }
    if (fragment.firstNode < 1 || fragment.lastNode < 1)
        fragment.source = page::createRange(display).htmlText();
    fragment.source = WithoutWraps(std::move(fragment.source));
    return fragment;
}

void ShowFragment(DisplayDocument& editor, const QString& source)
{
    const TagId block = editor.tags().intern(u"DIV", u"");
    const TagId markerTag = editor.tags().intern(MarkerElement, u"");
    const QChar marker = LineEndMarker();
    const QList<QStringView> texts = QStringView(source).split(LineBreak);
    std::vector<LinePtr> lines;
    lines.reserve(size_t(texts.size()));
    for (qsizetype i = 0; i < texts.size(); ++i) {
        Line line{block, texts[i].toString(), {}};
        if (i + 1 < texts.size()) {
            const int end = int(line.text.size());
            line.text += marker;
            line.marks = {Mark::opening(end, markerTag), Mark::closing(end + 1, markerTag)};
        }
        lines.push_back(MakeLine(std::move(line)));
    }
    ReplaceAllLines(editor, std::move(lines));
    // An undo in the editor must not empty it: "apply" would then remove the fragment from the book.
    editor.forgetUndo();
    editor.setSelection({}, {});
}

QString FragmentText(const DisplayDocument& editor)
{
    const QChar marker = LineEndMarker();
    QString text;
    for (int i = 0; i < editor.lineCount(); ++i) {
        const Line& line = editor.line(i);
        if (i > 0)
            text += LineBreak;
        if (line.marks.empty()) {
            text += line.text;
            continue;
        }
        const std::vector<bool> isMarker = MarkersOf(editor, line, marker);
        for (qsizetype at = 0; at < line.text.size(); ++at) {
            if (!isMarker[size_t(at)])
                text += line.text[at];
        }
    }
    return text;
}

void ApplyFragment(DisplayDocument& display, Fragment& fragment, const QString& source)
{
    if (!IsUnchanged(display, fragment, source)) {
        const bool isRun = fragment.firstNode >= 1 && fragment.lastNode >= 1;
        if (isRun && IsStillSelected(display, fragment)) {
            ReplaceFragmentLines(display, fragment, source);
        } else {
            page::createRange(display).pasteHTML(source);
            MarkEdit(1);
        }
    }
    fragment.firstNode = fragment.lastNode = -1;
}

void PaintFragment(DisplayDocument& editor)
{
    const QChar marker = LineEndMarker();
    // A "<" begins a tag only if a ">" follows, on this line or a later one.
    int lastEndLine = editor.lineCount() - 1;
    while (lastEndLine >= 0 && !editor.line(lastEndLine).text.contains(u'>'))
        --lastEndLine;
    LinePainter painter(editor.tags());
    std::vector<LinePtr> lines;
    lines.reserve(size_t(editor.lineCount()));
    for (int i = 0; i < editor.lineCount(); ++i) {
        const Line& line = editor.line(i);
        const int lastTagEnd = i < lastEndLine ? int(line.text.size())
            : i > lastEndLine                  ? 0
                                               : int(line.text.lastIndexOf(u'>'));
        lines.push_back(painter.paint(line, MarkersOf(editor, line, marker), lastTagEnd));
    }
    ReplaceAllLines(editor, std::move(lines));
    editor.setSelection({}, {});
}

ShownCodes CodesInFragment(DisplayDocument& editor)
{
    constexpr int MostTries = 20;
    TextRange range = page::createRange(editor);
    for (int i = 0; i < MostTries && range.text().isEmpty(); ++i)
        range.moveEnd(u"character", 1);
    const QString text = range.text();
    if (text.isEmpty())
        return {};
    const QChar first = text[0];
    if (first == QLatin1Char(NbspMarker) || first == QChar::Nbsp)
        return {u"160 (nbsp)"_s, u"160 (nbsp)"_s};
    if (first == LineEndMarker())
        return {u"line end"_s, u"line end"_s};
    const std::string byte = EncodeText(QStringView(text).first(1), CodePageSystem);
    // The 16-bit code is shown as a signed number, negative from 32768 on, by design.
    return {QString::number(static_cast<unsigned char>(byte.front())),
            QString::number(int16_t(first.unicode()))};
}

QByteArray PaintedSourcePage(const QString& source)
{
    // Characters 2 and 3 represent the angle brackets of the page's tags, 4 and 5 the tags around a
    // reference.
    const QString open = Char(2);
    const QString close = Char(3);
    const QString fontStart = open + "FONT color="_L1;
    const QString fontEnd = open + "/FONT"_L1 + close;
    QString text
        = RegExpReplace(QStringView(source), u"(&[^;]{0,10};)", QString(Char(4) + "$1"_L1 + Char(5)), false);
    text = ReplaceAll(std::move(text), u"&", open + "SPAN"_L1 + close + u'&' + open + "/SPAN"_L1 + close);
    text = RegExpReplace(QStringView(text), u"( id=| align=| color=| size=| text=| face=| bgColor=)",
                         QString(fontStart + "#B22222"_L1 + close + "$1"_L1 + fontEnd), false);
    text = RegExpReplace(QStringView(text), u"(<[^>]*>)",
                         QString(fontStart + "#0000FF"_L1 + close + "$1"_L1 + fontEnd), false);
    text = ReplaceAll(std::move(text), u"<", u"&lt;");
    text = ReplaceAll(std::move(text), u">", u"&gt;");
    text = ReplaceAll(std::move(text), open, u"<");
    text = ReplaceAll(std::move(text), close, u">");
    text = ReplaceAll(std::move(text), Char(4), u"<FONT color=#9370DB>");
    text = ReplaceAll(std::move(text), Char(5), u"</FONT>");
    text = ReplaceAll(std::move(text), LineBreak,
                      u"<FONT color=#808080>"_s + LineEndMarker() + u"</FONT><BR>"_s);
    return ("<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\">"_L1
            "<STYLE> BODY { word-wrap : break-word }</STYLE>"
            "<BODY LEFTMARGIN =2 RIGHTMARGIN =2 TOPMARGIN =2 BOTTOMMARGIN =2><DIV>"
            + text + "</DIV></BODY></HTML>"_L1)
        .toUtf8();
}

} // namespace vmk
