// Growth of the costs of the display document: the same work on pages of 1, 4, 16 and 64 MB, and a
// replace-all of 50 000 hits with its undo. Prints a table; the columns must grow with the size.

#include "DisplayPage.h"
#include "PageMaker.h"

#include <malloc.h>

#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace vmk;

/// Processor time of a task, which does not depend on the load of the machine.
double milliseconds(const std::function<void()>& work)
{
    const std::clock_t begin = std::clock();
    work();
    return 1000.0 * double(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// The size of the heap in MB.
double heapMegabytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return double(heap.uordblks + heap.hblkhd) / (1 << 20);
}

void measureSize(int megabytes)
{
    const QByteArray page = reference::makeBookPage(qsizetype(megabytes) << 20);
    const double before = heapMegabytes();
    DisplayDocument document;
    const double load = milliseconds([&] { document.loadPage(page); });
    const double memory = heapMegabytes() - before;

    TextRange range = page::createTextRange(document);
    const QString missing = QStringLiteral("nowhere in the book");
    const double forward = milliseconds([&] { static_cast<void>(range.findText(missing, 1, 0)); });
    const double exact
        = milliseconds([&] { static_cast<void>(range.findText(missing, 1, TextRange::MatchCase)); });
    const double backward = milliseconds([&] { static_cast<void>(range.findText(missing, -1, 0)); });
    qsizetype length = 0;
    const double all = milliseconds([&] {
        range.expand(u"textedit");
        range.select();
        length = range.text().size();
    });
    const double html = milliseconds([&] { length += range.htmlText().size(); });
    const double save = milliseconds([&] { length += document.savePage().size(); });
    const double erase = milliseconds([&] { page::clear(document); });
    const double undo = milliseconds([&] { document.undo(); });
    std::printf("%5d %8d %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.2f\n", megabytes,
                document.lineCount(), memory, load, forward, exact, backward, all, html, save, erase, undo);
}

void measureReplace()
{
    constexpr int Hits = 50000;
    DisplayDocument document;
    document.loadPage(reference::makeBookPage(qsizetype(30) << 20));
    std::vector<TextRange> others(300, page::createTextRange(document));
    TextRange range = page::createTextRange(document);
    int replaced = 0;
    const double replace = milliseconds([&] {
        while (replaced < Hits && range.findText(QStringLiteral("night"), 1, 0)) {
            range.setText(QStringLiteral("morning"));
            ++replaced;
        }
    });
    int undone = 0;
    const double undo = milliseconds([&] {
        while (document.undo())
            ++undone;
    });
    std::printf("\n%d replacements with 300 other live ranges: %.0f ms; %d undone: %.0f ms\n", replaced,
                replace, undone, undo);

    range = page::createTextRange(document);
    replaced = 0;
    const double breaks = milliseconds([&] {
        while (replaced < Hits && range.findText(QStringLiteral("night"), 1, 0)) {
            range.setText(QStringLiteral("mor\r\nning"));
            ++replaced;
        }
    });
    const double undoBreaks = milliseconds([&] {
        while (document.undo())
            ++undone;
    });
    std::printf("%d replacements that each break the line: %.0f ms; undone: %.0f ms\n", replaced, breaks,
                undoBreaks);
}

/// The worst case: every edit copies a line as long as a book.
void measureLongLine()
{
    constexpr int Hits = 5000;
    const QByteArray text
        = QByteArray("<SPAN class=t>&lt;p&gt;</SPAN>some text with one hit in it, and more of "
                     "it, so that the line is as long as a book. ")
              .repeated(Hits * 2);
    DisplayDocument document;
    document.loadPage("<HTML><BODY><DIV>" + text + "</DIV></BODY></HTML>");
    const double before = heapMegabytes();
    TextRange range = page::createTextRange(document);
    int replaced = 0;
    const double replace = milliseconds([&] {
        while (replaced < Hits && range.findText(QStringLiteral("hit"), 1, 0)) {
            range.setText(QStringLiteral("match"));
            ++replaced;
        }
    });
    const double memory = heapMegabytes() - before;
    const double undo = milliseconds([&] {
        while (document.undo()) { }
    });
    std::printf(
        "%d replacements in one line of %.1f million characters: %.0f ms and %.1f MB; undone: %.0f ms\n",
        replaced, double(document.line(0).text.size()) / 1e6, replace, memory, undo);
}

} // namespace

int main()
{
    std::printf("%5s %8s %8s %8s %8s %8s %8s %8s %8s %8s %8s %8s\n", "MB", "lines", "mem MB", "load ms",
                "find", "exact", "back", "sel+text", "html", "save", "delete", "undo");
    for (const int megabytes : {1, 4, 16, 64})
        measureSize(megabytes);
    measureReplace();
    measureLongLine();
    return 0;
}
