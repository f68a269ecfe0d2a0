#include "Repaint.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "Globals.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"
#include "LayoutQuery.h"
#include "PageLines.h"

#include <QHash>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr std::string_view Less = "&lt;";
constexpr std::string_view Greater = "&gt;";

/// True for the marks that painting makes.
bool IsPaint(const Tag& tag)
{
    return tag.name.startsWith("FONT"_L1) || tag.name.startsWith("SPAN"_L1)
        || (tag.name == "B"_L1 && tag.attributes.isEmpty());
}

/// The HTML of lines without their painting.
std::string BareHtml(const DisplayDocument& document, const SelectedLines& lines)
{
    QHash<TagId, bool> paint;
    QString html;
    for (int i = lines.first - 1; i < lines.last; ++i) {
        Line bare = document.line(i);
        std::erase_if(bare.marks, [&](const Mark& mark) {
            auto known = paint.constFind(mark.tag);
            if (known == paint.cend())
                known = paint.insert(mark.tag, IsPaint(document.tags()[mark.tag]));
            return *known;
        });
        if (i >= lines.first)
            html += "\r\n"_L1;
        writeLine(html, document.tags(), bare);
    }
    return html.toStdString();
}

/// Wraps tags and comments; attributes are left to `PaintAttributes`.
std::string PaintTags(std::string_view html, std::string_view tagStart, std::string_view tagEnd)
{
    std::string painted;
    painted.reserve(html.size() + html.size() / 2);
    bool inComment = false;
    while (true) {
        const size_t at = html.find_first_of("&\x03\x04");
        painted += html.substr(0, at);
        if (at == std::string_view::npos)
            return painted;
        const bool behindDashes = at >= 2 && html.substr(at - 2, 2) == "--";
        html.remove_prefix(at);
        size_t length = Less.size();
        if (html.starts_with("&lt;!--") || html.front() == '\x03') {
            painted += "<SPAN class=c>&lt;";
            inComment = true;
        } else if (html.front() == '\x04' || (html.starts_with(Less) && behindDashes && inComment)) {
            // A "<" right behind two dashes ends a comment; that it is this sign and not ">" is meant.
            // Outside a comment it begins a tag, as in "so--</p>", and the book's text stays as it is.
            painted += "&gt;</SPAN>";
            inComment = false;
        } else if (html.starts_with(Less)) {
            painted.append(tagStart).append(Less);
        } else if (html.starts_with(Greater)) {
            painted.append(Greater).append(tagEnd);
            inComment = false;
        } else {
            painted += '&';
            length = 1;
        }
        if (static_cast<unsigned char>(html.front()) < ' ')
            length = 1;
        html.remove_prefix(length);
    }
}

} // namespace

PaintStyle CurrentPaintStyle()
{
    return {TagHighlighting == 1, TagFontWeight == "bold"_L1 && DisplayFontWeight != "bold"_L1};
}

std::string PaintLines(std::string_view html, const PaintStyle& style)
{
    if (style.tagHighlighting) {
        std::string painted = PaintTags(html, "<SPAN class=t>", "</SPAN>");
        PaintAttributes(painted);
        return painted;
    }
    return style.boldTags ? PaintTags(html, "<B>", "</B>") : PaintTags(html, {}, {});
}

QString RePaintHtml(const QString& html)
{
    return QString::fromStdString(PaintLines(html.toStdString(), CurrentPaintStyle()));
}

void RePaintSelection(DisplayDocument& document, const LastPress& lastPress)
{
    const SelectedLines lines = TakeSelectedLines(document);
    if (!lines)
        return;

    const std::string painted = PaintLines(BareHtml(document, lines), CurrentPaintStyle());
    HtmlContent content = readFragment(document.tags(), QString::fromStdString(painted));
    ReplaceLines(document, lines, std::move(content.lines));
    UndoSteps = 2;

    if (lines.caret) {
        PutCaretBack(document, lines, {-1, 0}, 0);
        return;
    }
    if (document.layout() != nullptr)
        document.layout()->scrollTo(lastPress.scroll);
    PlaceCaret(document, lastPress.caret);
}

} // namespace vmk
