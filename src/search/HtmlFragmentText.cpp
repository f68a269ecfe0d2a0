#include "HtmlFragmentText.h"

#include "TextFunctions.h"

#include <algorithm>

namespace vmk {
namespace {

/// Returns the HTML after the head of the page.
QStringView WithoutHead(QStringView html)
{
    for (const QStringView marker : {u"<BASEFONT", u"<BODY", u"</HEAD"}) {
        const qsizetype at = html.indexOf(marker);
        const qsizetype end = at < 0 ? -1 : html.indexOf(u'>', at);
        if (end < 0)
            continue;
        const QStringView rest = html.sliced(end + 1);
        return rest.startsWith(u"\r\n") ? rest.sliced(2) : rest;
    }
    return html;
}

/// Removes everything that matches `<[^>]*>`.
QString WithoutTags(QStringView html)
{
    QString text;
    text.reserve(html.size());
    qsizetype at = 0;
    while (at < html.size()) {
        const qsizetype open = html.indexOf(u'<', at);
        const qsizetype close = open < 0 ? -1 : html.indexOf(u'>', open);
        if (close < 0)
            break;
        text += html.sliced(at, open - at);
        at = close + 1;
    }
    text += html.sliced(at);
    return text;
}

} // namespace

QString HtmlFragmentToText(QStringView html, bool decodeAngles)
{
    QString text = WithoutTags(WithoutHead(html));
    if (decodeAngles) {
        text = ReplaceAll(std::move(text), u"&lt;", u"<");
        text = ReplaceAll(std::move(text), u"&gt;", u">");
    }
    text = ReplaceAll(std::move(text), u"&nbsp;", u"\u00a0");
    text = ReplaceAll(std::move(text), u" \r\n", u" ");
    return ReplaceAll(std::move(text), u"\r\n", u"\r");
}

} // namespace vmk
