#include "BookPage.h"

#include "DisplayCharacters.h"
#include "LargeBuffers.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "PageLines.h"
#include "XmlDocument.h"

#include <future>
#include <system_error>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The page up to its first line.
std::string PageStart(const DisplayValues& values)
{
    return R"(<HTML><meta content="text/html; charset=utf-8" http-equiv="Content-Type">)" + HeadBlock(values)
        + R"(<BODY STYLE="font-family:)" + values.fontName + "; font-size:" + values.fontSize
        + "; font-weight:" + values.fontWeight + "; text-align:" + values.textAlign
        + "; margin-top:2px; margin-left:" + values.leftMargin + "; margin-right:" + values.rightMargin
        + "\" text=\"" + values.foreColor + "\" bgColor=\"" + values.backColor + "\">" + CrLf;
}

constexpr std::string_view PageEnd = "</BODY></HTML>";

/// A rule of six lines for `SPAN`.
std::string SpanRule(std::string_view selector, const DisplayValues& values, std::string_view weight,
                     std::string_view align, std::string_view color)
{
    std::string rule(selector);
    const auto add = [&rule](std::string_view name, std::string_view value) {
        rule.append(name).append(value).append(";").append(CrLf);
    };
    rule += CrLf;
    add("\t{font-family:", values.fontName);
    add("\tfont-size:", values.fontSize);
    add("\tfont-weight:", weight);
    add("\ttext-align:", align);
    add("\tcolor:", color);
    return rule + "\tpage-break-after:avoid;}" + CrLf;
}

/// A rule for `FONT`; `middle` contains the lines between its first and its last.
std::string FontRule(std::string_view selector, const std::string& color, const std::string& middle = {})
{
    return std::string(selector) + CrLf + "\t{color:" + color + ";" + CrLf + middle
        + "\tpage-break-after:avoid;}" + CrLf;
}

/// Reports the painting steps in the status bar.
void ShowPaintingSteps(const DisplayValues& values)
{
    if (values.tagHighlighting) {
        ShowStatus(u"...converting xml to html: painting tags: main color..."_s);
        ShowStatus(u"...converting xml to html: painting tag attributes..."_s);
        ShowStatus(u"...converting xml to html: painting tag attribute values..."_s);
    }
    if (values.showNbsp)
        ShowStatus(u"...converting xml to html: non-broken spaces..."_s);
}

/// Evaluates a question on another thread; on this one, when the result is needed, if `later` is set or if no
/// thread can be started.
template <typename Question>
std::future<bool> Along(const Question& question, bool later)
{
    try {
        return std::async(later ? std::launch::deferred : std::launch::async, question);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, question);
    }
}

} // namespace

std::string HeadBlock(const DisplayValues& values)
{
    if (!values.tagHighlighting)
        return {};
    const auto tagRule = [&values](std::string_view selector) {
        return SpanRule(selector, values, values.tagFontWeight, "left", values.tagColor);
    };
    // A repainted piece is outside its tag, so that it needs the tag's font weight itself.
    const std::string weight
        = "\tfont-weight:" + values.tagFontWeight + ";" + CrLf + "\ttext-align:left;" + CrLf;
    return std::string("<HEAD>") + CrLf + "<STYLE>" + CrLf
        + SpanRule("span.b", values, values.fontWeight, values.textAlign, values.foreColor)
        + tagRule("span.t") + FontRule("font.n", values.attrNameColor)
        + FontRule("font.v", values.attrValColor) + SpanRule("span.c", values, "bold", "left", "red")
        + tagRule("span.et") + FontRule("font.en", values.attrNameColor, weight)
        + FontRule("font.ev", values.attrValColor, weight) + "</STYLE>" + CrLf + "</HEAD>";
}

std::optional<XmlTreeText> TreeOfBook(const std::string& text, const PageRequest& request)
{
    // Whether the text itself is well-formed is checked together with its tree if possible, else in parallel.
    const bool sameFault = LinesAreBetweenTags(text);
    std::future<bool> broken
        = Along([&text, &request] { return HasParseError(text, request.encoding); }, sameFault);

    ShowStatus(u"...converting xml to html: preparing tree view..."_s);
    const std::string lines = TreeLines(text, "\r", request.inLineTags);
    XmlSerializer serializer(request.inLineTags.elementNames(), request.xmlDeclaration, lines.size(),
                             XmlForm::Display);
    XmlDocument document;
    document.validateOnParse = false;
    const bool laidOut = document.loadXML(lines, request.encoding, &serializer);

    // Joining lines can break a text: a line end may be the only separator of a tag's name and its attribute.
    if (!laidOut || (!sameFault && broken.get()))
        return std::nullopt;
    return serializer.take();
}

std::optional<XmlTreeText> KeptTreeOfBook(const std::string& text, const PageRequest& request,
                                          LineLosses& losses, size_t& moved)
{
    const bool sameFault = LinesAreBetweenTags(text);
    std::future<bool> broken
        = Along([&text, &request] { return HasParseError(text, request.encoding); }, sameFault);
    ShowStatus(u"...converting xml to html: preparing tree view..."_s);
    const std::string lines = KeptTreeLines(text, "\r", request.inLineTags, losses);
    XmlSerializer serializer(request.inLineTags.elementNames(), request.xmlDeclaration, lines.size(),
                             XmlForm::Display);
    serializer.keepTextOf(TextElementNames(request.inLineTags));
    XmlDocument document;
    document.validateOnParse = false;
    const bool laidOut = document.loadXML(lines, request.encoding, &serializer);
    // A text is shown as a tree only if it is well-formed itself: joining its lines must not repair it.
    if (!laidOut || (!sameFault && broken.get()))
        return std::nullopt;
    moved = serializer.keptElements();
    return serializer.take();
}

std::string PageWithTree(const XmlTreeText& tree, const PageRequest& request)
{
    ShowStatus(u"...converting xml to html: looking for nodes..."_s);
    ShowStatus(u"...converting xml to html: replacing Fiction Book tags..."_s);
    ShowStatus(u"...converting xml to html: shifting nodes..."_s);
    ShowPaintingSteps(request.values);
    std::string page = PageStart(request.values);
    const auto replaced = request.keepsText ? QuotedDeclarations::Keep : QuotedDeclarations::Replace;
    AppendTreeLines(tree, request.xmlDeclaration, request.values, page, replaced);
    page += PageEnd;
    return page;
}

PageOfLines::PageOfLines(const OutlinedText& outlined, const DisplayValues& displayValues)
    : text(outlined)
    , values(displayValues)
    , lines(outlined, displayValues)
{
}

void PageOfLines::append(std::size_t first, std::size_t last, std::string& page) const
{
    if (first == 0)
        page += PageStart(values);
    lines.append(first, last, page);
    if (last == text.lineCount())
        page += PageEnd;
}

std::string PageWithOutline(const OutlinedText& text, const DisplayValues& values)
{
    constexpr std::size_t PerLine = 100;
    ShowPaintingSteps(values);
    std::string page = StringWithRoom(text.text.size() + text.lineCount() * PerLine);
    PageOfLines(text, values).append(0, text.lineCount(), page);
    return page;
}

std::string PageWithoutLines(const DisplayValues& values)
{
    return PageStart(values) + std::string(PageEnd);
}

std::string PageWithoutTree(std::string text, const PageRequest& request)
{
    std::erase(text, '\t');
    ShowStatus(u"...converting xml to html: preparing tree view..."_s);
    return PageOfPlainLines(PageAmpersands(TreeLines(std::move(text), "\r", request.inLineTags)), request);
}

std::string PageOfPlainLines(const std::string& lines, const PageRequest& request)
{
    ShowPaintingSteps(request.values);
    std::string page = PageStart(request.values);
    AppendPlainLines(lines, request.values, page,
                     request.keepsText ? ControlCharacters::Keep : ControlCharacters::Mark);
    page += PageEnd;
    return page;
}

} // namespace vmk
