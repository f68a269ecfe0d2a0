#pragma once

#include "DisplayPage.h"

#include <gtest/gtest.h>

#include <string>

namespace vmk {

/// Returns the HTML of all lines, separated by "|".
inline std::string linesOf(DisplayDocument& document)
{
    QString html;
    for (int i = 1; i <= document.lineCount(); ++i)
        html += (i > 1 ? QStringLiteral("|") : QString()) + page::item(document, i).outerHTML();
    return html.toStdString();
}

inline std::string text(const TextRange& range)
{
    return range.text().toStdString();
}

/// A document with three lines and a caret.
class Document : public ::testing::Test
{
protected:
    void SetUp() override
    {
        load(
            "<DIV id=FirstDiv>one</DIV><DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;</SPAN>c</DIV>"
            "<DIV>three</DIV>");
    }
    void load(const char* page) { document.loadPage(QByteArray(page)); }
    void caret(int line, int offset) { document.setSelection({line, offset}, {line, offset}); }
    TextRange range(int line, int from, int to) { return {document, {line, from}, {line, to}}; }
    TextRange lines(int first, int last)
    {
        return {document, {first, 0}, {last, int(document.line(last).text.size())}};
    }

    DisplayDocument document;
};

inline constexpr char Three[]
    = "<DIV id=FirstDiv>one</DIV>|<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;"
      "</SPAN>c</DIV>|<DIV>three</DIV>";
inline constexpr char Second[] = "<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;</SPAN>c</DIV>";

} // namespace vmk
