#include "ClipboardRules.h"

#include "Desktop.h"
#include "DisplayPage.h"
#include "EditLines.h"
#include "TextFunctions.h"
#include "TextRange.h"
#include "TypingRules.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The part after the end of the head.
QStringView AfterHead(QStringView html)
{
    for (const QStringView marker : {u"<BASEFONT", u"<BODY", u"</HEAD"}) {
        const qsizetype at = html.indexOf(marker, 0, Qt::CaseInsensitive);
        const qsizetype end = at < 0 ? -1 : html.indexOf(u'>', at);
        if (end < 0)
            continue;
        const QStringView rest = html.mid(end + 1);
        return rest.startsWith(u"\r\n") ? rest.mid(2) : rest;
    }
    return html;
}

} // namespace

void CopySelection(DisplayDocument& document, bool cut)
{
    // Some displays wrap long lines after a blank; the wrap is removed.
    SetClipboardText(ReplaceAll(HtmlToCopy(page::createRange(document)), u" \r\n", u" "));
    if (cut)
        DeleteSelection(document);
}

void CopyAsText(DisplayDocument& document)
{
    SetClipboardText(ReplaceAll(page::createRange(document).text(), u" \r\n", u" "));
}

QString HtmlToPlainText(const QString& html, bool decodeAngleBrackets)
{
    QString text = RegExpReplace(AfterHead(html), u"<[^>]*>", u"", false);
    if (decodeAngleBrackets) {
        text = ReplaceAll(std::move(text), u"&lt;", u"<");
        text = ReplaceAll(std::move(text), u"&gt;", u">");
    }
    text = ReplaceAll(std::move(text), u"&nbsp;", u"\u00a0");
    text = ReplaceAll(std::move(text), u" \r\n", u" ");
    return ReplaceAll(std::move(text), u"\r\n", u"\r");
}

} // namespace vmk
