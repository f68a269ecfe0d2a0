#pragma once

#include "RegExp.h"

#include <QList>
#include <QString>

/// The book cleaner's work on one string, step by step.
namespace vmk::reference {

struct PlainCleanUpRow
{
    QString what;
    QString by;
    bool matchCase = false;
    bool regExp = false;
    bool enabled = true;
};

/// The notation `uni(...)` is not used by the rows that the tests compare.
inline QString PlainRow(QString html, PlainCleanUpRow row)
{
    if (!row.enabled || row.what.isEmpty())
        return html;
    row.by.replace(QStringLiteral("<"), QStringLiteral("\x01"));
    row.by.replace(QStringLiteral(">"), QStringLiteral("\x02"));
    if (row.regExp) {
        row.what.replace(QStringLiteral("<"), QStringLiteral("\\x01"));
        row.what.replace(QStringLiteral(">"), QStringLiteral("\\x02"));
        RegExp expression;
        expression.Pattern = row.what;
        expression.IgnoreCase = !row.matchCase;
        expression.Global = true;
        return expression.Replace(html, row.by).value_or(html);
    }
    row.what.replace(QStringLiteral("<"), QStringLiteral("\x01"));
    row.what.replace(QStringLiteral(">"), QStringLiteral("\x02"));
    return html.replace(row.what, row.by, row.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
}

/// \param html  the HTML of the lines, painted
/// \return the HTML after all rows, not painted
inline QString PlainCleanUp(QString html, const QList<PlainCleanUpRow>& rows)
{
    // The browser's wraps.
    html.replace(QStringLiteral(" \r\n"), QStringLiteral(" "));
    // Masking.
    html.remove(QChar(1));
    html.remove(QChar(2));
    html.replace(QStringLiteral("&lt;"), QStringLiteral("\x01"));
    html.replace(QStringLiteral("&gt;"), QStringLiteral("\x02"));
    // The painting.
    RegExp tag;
    tag.Global = true;
    tag.IgnoreCase = true;
    tag.Pattern = QStringLiteral("<FONT[^>]*>");
    html = tag.Replace(html, u"").value_or(html);
    html.remove(QStringLiteral("</FONT>"));
    tag.Pattern = QStringLiteral("<SPAN[^>]*>");
    html = tag.Replace(html, u"").value_or(html);
    html.remove(QStringLiteral("</SPAN>"));
    html.remove(QStringLiteral("<B>"));
    html.remove(QStringLiteral("</B>"));
    for (const PlainCleanUpRow& row : rows)
        html = PlainRow(html, row);
    html.replace(QStringLiteral("\x01"), QStringLiteral("&lt;"));
    html.replace(QStringLiteral("\x02"), QStringLiteral("&gt;"));
    return html;
}

} // namespace vmk::reference
