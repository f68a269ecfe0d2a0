#include "Repaint.h"

#include "BookVariables.h"
#include "DisplayPage.h"
#include "EditLines.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"
#include "LayoutQuery.h"
#include "PageLines.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr std::string_view Less = "&lt;";
constexpr std::string_view Greater = "&gt;";

/// True for marks that painting creates.
bool IsPaint(const Tag& tag)
{
    return tag.name.startsWith("FONT"_L1) || tag.name.startsWith("SPAN"_L1)
        || (tag.name == "B"_L1 && tag.attributes.isEmpty());
}

/// Wraps the tags and comments in text between real tags. `PaintAttributes` handles attributes.
/// \param inComment  in: a comment is open at the start of the text; out: at its end
std::string PaintTags(std::string_view text, const TagPaint& paint, bool& inComment)
{
    std::string painted;
    painted.reserve(text.size() + text.size() / 2);
    while (true) {
        const size_t at = text.find_first_of("&\x03\x04");
        painted += text.substr(0, at);
        if (at == std::string_view::npos)
            return painted;
        const bool behindDashes = at >= 2 && text.substr(at - 2, 2) == "--";
        text.remove_prefix(at);
        size_t length = Less.size();
        if (text.starts_with("&lt;!--") || text.front() == '\x03') {
            painted += "<SPAN class=c>&lt;";
            inComment = true;
        } else if (text.front() == '\x04' || (text.starts_with(Less) && behindDashes && inComment)) {
            // A "<" directly after two dashes ends a comment; that it is "<" and not ">" is intended. Outside
            // a comment it begins a tag, as in "so--</p>", and the book's text is unchanged.
            painted += "&gt;</SPAN>";
            inComment = false;
        } else if (text.starts_with(Less)) {
            painted += paint.start;
        } else if (text.starts_with(Greater)) {
            painted += paint.end;
            inComment = false;
        } else {
            painted += '&';
            length = 1;
        }
        if (static_cast<unsigned char>(text.front()) < ' ')
            length = 1;
        text.remove_prefix(length);
    }
}

/// The next real tag that painting must not change or cross: a block's tag, or one with a quoted value.
/// \return its position and length; the end of the text and 0 if there is none
std::pair<size_t, size_t> NextSolidTag(std::string_view html)
{
    for (size_t at = html.find('<'); at != std::string_view::npos; at = html.find('<', at + 1)) {
        const size_t end = html.find('>', at);
        if (end == std::string_view::npos)
            break;
        const std::string_view tag = html.substr(at, end + 1 - at);
        const bool isBlock = tag.starts_with("<DIV") || tag.starts_with("</DIV");
        if (isBlock || tag.find_first_of("\"&") != std::string_view::npos)
            return {at, tag.size()};
        at = end;
    }
    return {html.size(), 0};
}

} // namespace

std::string PaintLines(std::string_view html, const TagPaint& paint)
{
    std::string painted;
    painted.reserve(html.size() + html.size() / 2);
    bool inComment = false;
    while (!html.empty()) {
        const auto [at, length] = NextSolidTag(html);
        std::string piece = PaintTags(html.substr(0, at), paint, inComment);
        if (paint.attributes)
            PaintAttributes(piece);
        painted.append(piece).append(html.substr(at, length));
        html.remove_prefix(at + length);
    }
    return painted;
}

QString BareHtml(const DisplayDocument& document, int first, int count)
{
    QHash<TagId, bool> paint;
    std::vector<Mark> marks;
    QString html;
    for (int i = first; i < first + count; ++i) {
        const Line& line = document.line(i);
        marks.clear();
        std::ranges::copy_if(line.marks, std::back_inserter(marks), [&](const Mark& mark) {
            auto known = paint.constFind(mark.tag);
            if (known == paint.cend())
                known = paint.insert(mark.tag, IsPaint(document.tags()[mark.tag]));
            return !*known;
        });
        if (i > first)
            html += "\r\n"_L1;
        WriteLine(html, document.tags(), {line.block, line.text, marks});
    }
    return html;
}

QString RePaintHtml(const QString& html, const TagPaint& paint)
{
    return QString::fromStdString(PaintLines(html.toStdString(), paint));
}

void RePaintSelection(DisplayDocument& document, const LastPress& lastPress, const TagPaint& paint)
{
    const SelectedLines lines = TakeSelectedLines(document);
    if (!lines)
        return;

    const QString bare = BareHtml(document, lines.first - 1, lines.last - lines.first + 1);
    const std::string painted = PaintLines(bare.toStdString(), paint);
    HtmlContent content = ReadFragment(document.tags(), QString::fromStdString(painted));
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
