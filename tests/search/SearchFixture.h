#pragma once

#include "FindReplaceFunctions.h"
#include "FindReplaceRegExpFuncs.h"

#include "DisplayPage.h"
#include "HtmlWriter.h"
#include "TextRange.h"

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace vmk {

/// A search over a small page.
class SearchFixture : public testing::Test
{
protected:
    /// Shows lines, given as in the body of a page.
    void show(const QString& lines)
    {
        document.loadPage("<HTML><BODY>\r\n" + lines.toUtf8() + "</BODY></HTML>");
        start();
    }
    /// A new search from the start of the page.
    void start()
    {
        document.setSelection({}, {});
        NewSearch(state, options, false);
    }
    void select(int line, int offset, int toLine, int toOffset)
    {
        document.setSelection({line, offset}, {toLine, toOffset});
    }

    bool find(const QString& text)
    {
        const FindResult result = Find_Text(state, text, options);
        report = result.report;
        return result.outcome == FindResult::Hit;
    }
    int32_t replaceAll(const QString& text, const QString& replacement)
    {
        const ReplaceAllResult result = Replace_All(state, text, replacement, options, events);
        report = result.report;
        return result.undoSteps;
    }
    bool findRegExp(const QString& pattern)
    {
        const FindResult result = RegExpFind(state, pattern, options, events);
        report = result.report;
        return result.outcome == FindResult::Hit;
    }
    int32_t replaceAllRegExp(const QString& pattern, const QString& replacement)
    {
        const ReplaceAllResult result = RegExpReplaceAll(state, pattern, replacement, options, events);
        report = result.report;
        beep = result.beep;
        return result.undoSteps;
    }
    void undo(int32_t steps)
    {
        for (int32_t i = 0; i < steps; ++i)
            ASSERT_TRUE(document.undo());
    }

    /// The page's text, "|" between lines.
    [[nodiscard]] QString text() const
    {
        return page::innerText(document).replace(QStringLiteral("\r\n"), QStringLiteral("|"));
    }
    [[nodiscard]] QString html(int line) const
    {
        QString written;
        WriteContent(written, document.tags(), document.line(line));
        return written;
    }
    [[nodiscard]] QString selected() { return page::createRange(document).text(); }
    [[nodiscard]] Position hit() const { return state.SearchRange.start(); }

    DisplayDocument document;
    SearchState state{document};
    SearchOptions options;
    QStringList reports;
    SearchEvents events{[this](const QString& shown) { reports.append(shown); }, [] {}};
    QString report;
    bool beep = false;
};

} // namespace vmk
