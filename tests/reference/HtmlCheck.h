#pragma once

#include "DisplayPage.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"

#include <QString>

#include <string>

/// Properties of any HTML, shared by the property tests and the fuzzer.
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

/// A line with its tags as written, so that lines of two documents can be compared.
inline QString lineInWords(const TagTable& tags, const Line& line)
{
    QString words = tags[line.block].startTag() + u'|' + line.text;
    for (const Mark& mark : line.marks) {
        const Tag& tag = tags[mark.tag];
        words += u'|' + QString::number(mark.pos) + (mark.open ? tag.startTag() : tag.endTag());
    }
    return words;
}

/// Empty when all lines of a document are well formed.
inline std::string linesFault(const DisplayDocument& document)
{
    for (int i = 0; i < document.lineCount(); ++i) {
        if (std::string fault = lineFault(document.line(i)); !fault.empty())
            return fault;
    }
    return {};
}

/// Empty when the lines of a document are well formed and, written with or without a line end between them,
/// read back as the same lines.
inline std::string documentFault(DisplayDocument& document)
{
    if (std::string fault = linesFault(document); !fault.empty())
        return fault;
    if (document.line(0).block == NoTag)
        return {};
    for (const QStringView between : {u"", u"\r\n"}) {
        QString written;
        for (int i = 0; i < document.lineCount(); ++i) {
            WriteLine(written, document.tags(), document.line(i));
            written += between;
        }
        const HtmlContent again = ReadFragment(document.tags(), written);
        if (int(again.lines.size()) != document.lineCount())
            return "other number of lines: " + written.toStdString();
        for (int i = 0; i < document.lineCount(); ++i) {
            if (*again.lines[std::size_t(i)] != document.line(i)) {
                QString line;
                WriteLine(line, document.tags(), *again.lines[std::size_t(i)]);
                return "line reads back otherwise: " + written.toStdString() + " as " + line.toStdString();
            }
        }
    }
    return {};
}

/// Empty when the lines of a fragment are well formed, and written as lines of a document read back the
/// same.
inline std::string fragmentFault(QStringView html)
{
    DisplayDocument document;
    document.insertLines(0, html);
    return documentFault(document);
}

/// Empty when a page's lines are well formed and the page as saved loads as the same lines, head and body
/// tag, and saves as the same bytes again.
inline std::string pageFault(const QByteArray& html)
{
    DisplayDocument document;
    document.loadPage(html);
    if (std::string fault = linesFault(document); !fault.empty())
        return fault;
    const QByteArray saved = document.savePage();
    DisplayDocument again;
    again.loadPage(saved);
    if (again.savePage() != saved)
        return "page is saved otherwise: " + saved.toStdString() + " as " + again.savePage().toStdString();
    if (again.lineCount() != document.lineCount())
        return "other number of lines: " + saved.toStdString();
    for (int i = 0; i < document.lineCount(); ++i) {
        const QString before = lineInWords(document.tags(), document.line(i));
        const QString after = lineInWords(again.tags(), again.line(i));
        if (after != before)
            return "line reads back otherwise: " + before.toStdString() + " as " + after.toStdString();
    }
    return {};
}

/// Empty when replacing each element of a page by its own HTML does not change the page.
/// @param mostElements number of elements to try, from the start of the page.
inline std::string elementFault(const QByteArray& html, int mostElements)
{
    DisplayDocument document;
    document.loadPage(html);
    const QByteArray before = document.savePage();
    const auto tryElement = [&](DisplayElement element) -> std::string {
        const QString own = element.outerHTML();
        element.setOuterHTML(own);
        if (const QByteArray after = document.savePage(); after != before)
            return before.toStdString() + " is with " + own.toStdString() + " put in its place "
                + after.toStdString();
        return {};
    };
    for (int i = 0; i < document.lineCount() && mostElements > 0; ++i, --mostElements) {
        if (document.line(i).block == NoTag)
            continue;
        if (std::string fault = tryElement({document, i}); !fault.empty())
            return fault;
        for (std::size_t mark = 0; mark < document.line(i).marks.size() && mostElements > 0; ++mark) {
            if (!document.line(i).marks[mark].open)
                continue;
            --mostElements;
            if (std::string fault = tryElement({document, i, mark}); !fault.empty())
                return fault;
        }
    }
    return {};
}

} // namespace vmk::reference
