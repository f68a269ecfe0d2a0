#pragma once

#include "DisplayPage.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"

#include <QString>

#include <string>

/// What must hold for any HTML, shared by the property tests and the fuzzer.
namespace vmk::reference {

/// Empty when a line is well formed: marks ascending, within the text, nested and closed; no line ends.
inline std::string lineFault(const Line& line)
{
    std::vector<TagId> open;
    int pos = 0;
    for (const Mark& mark : line.marks) {
        if (mark.pos < pos || mark.pos > line.text.size())
            return "mark out of place";
        pos = mark.pos;
        if (mark.open) {
            open.push_back(mark.tag);
        } else {
            if (open.empty() || open.back() != mark.tag)
                return "marks not nested";
            open.pop_back();
        }
    }
    if (!open.empty())
        return "mark left open";
    if (line.text.contains(u'\r') || line.text.contains(u'\n'))
        return "line end in a line";
    return {};
}

/// Empty when the lines of a fragment are well formed, and written as lines of a document read back the
/// same.
inline std::string fragmentFault(QStringView html)
{
    DisplayDocument document;
    document.insertLines(0, html);
    for (int i = 0; i < document.lineCount(); ++i) {
        if (std::string fault = lineFault(document.line(i)); !fault.empty())
            return fault;
    }
    if (document.line(0).block == NoTag)
        return {};
    QString written;
    for (int i = 0; i < document.lineCount(); ++i)
        writeLine(written, document.tags(), document.line(i));
    const HtmlContent again = readFragment(document.tags(), written);
    if (int(again.lines.size()) != document.lineCount())
        return "other number of lines: " + written.toStdString();
    for (int i = 0; i < document.lineCount(); ++i) {
        if (*again.lines[std::size_t(i)] != document.line(i)) {
            QString line;
            writeLine(line, document.tags(), *again.lines[std::size_t(i)]);
            return "line reads back otherwise: " + written.toStdString() + " as " + line.toStdString();
        }
    }
    return {};
}

/// Empty when a page's lines are well formed and the page as saved loads and saves as the same bytes again.
inline std::string pageFault(const QByteArray& html)
{
    DisplayDocument document;
    document.loadPage(html);
    for (int i = 0; i < document.lineCount(); ++i) {
        if (std::string fault = lineFault(document.line(i)); !fault.empty())
            return fault;
    }
    const QByteArray saved = document.savePage();
    DisplayDocument again;
    again.loadPage(saved);
    if (innerText(again) != innerText(document))
        return "text reads back otherwise: " + saved.toStdString();
    if (again.savePage() != saved)
        return "page is saved otherwise: " + saved.toStdString() + " as " + again.savePage().toStdString();
    return {};
}

} // namespace vmk::reference
