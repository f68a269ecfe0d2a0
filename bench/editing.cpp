// Costs of the editing commands on pages of 1, 4 and 16 MB of book text: each command at a caret in the
// middle, and line commands on the complete book, with their undo. The page is shown in a real
// view. Prints processor milliseconds, one row per page, to show the growth; medians for commands that run
// often.

#include "BookVariables.h"
#include "CaretTag.h"
#include "ClipboardRules.h"
#include "DisplayPage.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "FieldRules.h"
#include "NodeShift.h"
#include "NonBreakingSpace.h"
#include "PageMaker.h"
#include "PasteRules.h"
#include "Repaint.h"
#include "SettingsVariables.h"
#include "TypingRules.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace vmk;

constexpr int RunsOnACaret = 21;

double milliseconds(const std::function<void()>& work)
{
    const std::clock_t begin = std::clock();
    work();
    return 1000.0 * double(std::clock() - begin) / CLOCKS_PER_SEC;
}

struct Row
{
    const char* name;
    std::function<void(DisplayDocument&)> command;
};

void undoEdit(DisplayDocument& document)
{
    for (int step = 0; step < std::max(UndoSteps, 1); ++step)
        document.undo();
}

void selectAll(DisplayDocument& document)
{
    document.setSelection({}, document.end());
}

/// The median of a command at a caret in the middle of the page; each run is undone.
double onCaret(DisplayView& view, const Row& row)
{
    DisplayDocument& document = view.document();
    std::vector<double> times;
    for (int run = 0; run < RunsOnACaret; ++run) {
        const Position middle = document.valid({document.lineCount() / 2 + 7 * run, 3});
        document.setSelection(middle, middle);
        view.scrollIntoView(middle);
        UndoSteps = 0;
        times.push_back(milliseconds([&] {
            row.command(document);
            view.viewport()->repaint();
        }));
        if (UndoSteps > 0)
            undoEdit(document);
    }
    std::ranges::nth_element(times, times.begin() + RunsOnACaret / 2);
    return times[RunsOnACaret / 2];
}

void measure(int megabytes, const std::vector<Row>& small, const std::vector<Row>& whole)
{
    DisplayView view;
    view.resize(1000, 700);
    view.show();
    // The page of a book has about twice its size.
    view.setPage(reference::makeBookPage(qsizetype(2 * megabytes) << 20));
    view.setDesignMode(QStringLiteral("On"));
    QCoreApplication::processEvents();
    DisplayDocument& document = view.document();
    std::printf("\n%d MB of book, %d lines\n", megabytes, document.lineCount());

    for (const Row& row : small)
        std::printf("  %-28s %9.2f ms at a caret, painted\n", row.name, onCaret(view, row));
    for (const Row& row : whole) {
        selectAll(document);
        UndoSteps = 0;
        const double run = milliseconds([&] { row.command(document); });
        const double undo = UndoSteps > 0 ? milliseconds([&] { undoEdit(document); }) : 0;
        std::printf("  %-28s %9.1f ms on the whole book, undo %.1f ms\n", row.name, run, undo);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TagHighlighting = 1;
    NodeShift = 5;
    ShowNbsp = 1;
    const QString line = QStringLiteral("<DIV>a pasted line</DIV>");

    const TagPaint paint = TagPaint::Of(DisplayValuesOfSettings());

    const std::vector<Row> small = {
        {"blank", [](DisplayDocument& d) { InsertSpace(d); }},
        {"non-breaking space", [](DisplayDocument& d) { InsertNbsp(d, QLatin1Char(NbspMarker)); }},
        {"bold", [](DisplayDocument& d) { InsertInlineTag(d, InlineTag::Bold); }},
        {"paste", [&line](DisplayDocument& d) { PasteText(d, line, {}, QLatin1Char(NbspMarker)); }},
        {"paste as html", [&line](DisplayDocument& d) { PasteHtml(d, line, {}, QLatin1Char(NbspMarker)); }},
        {"right shift", [](DisplayDocument& d) { RightShift(d, NodeShift); }},
        {"left shift", [](DisplayDocument& d) { LeftShift(d, NodeShift); }},
        {"repaint", [&paint](DisplayDocument& d) { RePaintSelection(d, {}, paint); }},
        {"caret right", [](DisplayDocument& d) { MoveCaret(d, CaretDirection::Right); }},
        {"tag under the caret", [](DisplayDocument& d) { static_cast<void>(GetTagUnderCaret(d)); }},
    };
    const std::vector<Row> whole = {
        {"repaint (Esc)", [&paint](DisplayDocument& d) { RePaintSelection(d, {}, paint); }},
        {"right shift (Tab)", [](DisplayDocument& d) { RightShift(d, NodeShift); }},
        {"left shift (Ctrl+Tab)", [](DisplayDocument& d) { LeftShift(d, NodeShift); }},
        {"upper case", [](DisplayDocument& d) { ChangeCase(d, LetterCase::Upper); }},
        {"copy", [](DisplayDocument& d) { CopySelection(d, false); }},
        {"copy as text", [](DisplayDocument& d) { CopyAsText(d); }},
    };
    for (const int megabytes : {1, 4, 16})
        measure(megabytes, small, whole);
    return 0;
}
