// Applies a table of 20 rows, 10 plain and 10 expressions, to a whole book that is shown in a display:
// from the call to the painted page, one undo, and peak memory. Compares the rows alone with the same 20
// substitutions in `perl -CSD -0777` on the text of the book, in one run.
//
// bench_cleaner [SIZE]: the size of the book for make_book, by default 15M.

#include "BookDocument.h"
#include "CleanUpEngine.h"
#include "DisplayText.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "FileOperations.h"
#include "InitGlobals.h"
#include "ProgramTiming.h"
#include "Repaint.h"
#include "Settings.h"
#include "StartUpVariables.h"

#include <QApplication>
#include <QTemporaryDir>

#include <chrono>
#include <fstream>
#include <malloc.h>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr double WantedSeconds = 2;
constexpr double WantedUndo = 0.5;
constexpr double WantedRatio = 3;
constexpr double WantedMemory = 6;

/// A row, and the same as a substitution of perl.
struct BenchRow
{
    const char16_t* what;
    const char16_t* by;
    bool regExp;
    const char* perl;
};

constexpr BenchRow Rows[] = {
    {u"...", u"\u2026", false, R"(s/\.\.\./\x{2026}/g)"},
    {u" - ", u" \u2013 ", false, R"(s/ - / \x{2013} /g)"},
    {u"the ", u"THE ", false, R"(s/the /THE /gi)"},
    {u"и ", u"И ", false, R"(s/и /И /gi)"},
    {u"ea", u"ae", false, R"(s/ea/ae/gi)"},
    {u"qqqq", u"z", false, R"(s/qqqq/z/gi)"},
    {u"<emphasis>", u"<strong>", false, R"(s/<emphasis>/<strong>/gi)"},
    {u"</emphasis>", u"</strong>", false, R"(s/<\/emphasis>/<\/strong>/gi)"},
    {u"th", u"ht", false, R"(s/th/ht/gi)"},
    {u"о", u"o", false, R"(s/о/o/gi)"},
    {u"([a-z])'([a-z])", u"$1\u2019$2", true, R"(s/([a-z])'([a-z])/$1\x{2019}$2/gi)"},
    {u"(\\d)-(\\d)", u"$1\u2013$2", true, R"(s/([0-9])-([0-9])/$1\x{2013}$2/g)"},
    {u" +([,.!?])", u"$1", true, R"(s/ +([,.!?])/$1/g)"},
    {u"([a-z]{3,})ing\\b", u"$1in", true, R"(s/([a-z]{3,})ing\b/$1in/gia)"},
    {u"<p>\\s*", u"<p>", true, R"(s/<p>\s*/<p>/gi)"},
    {u"\\s*</p>", u"</p>", true, R"(s/\s*<\/p>/<\/p>/gi)"},
    {u"([а-яё])0(?=[а-яё])", u"$1о", true, R"(s/([а-яё])0(?=[а-яё])/$1о/gi)"},
    {u"(\\w+)-(\\w+)", u"$2-$1", true, R"(s/(\w+)-(\w+)/$2-$1/ga)"},
    {u"[!?]{2,}", u"!", true, R"(s/[!?]{2,}/!/g)"},
    {u"№ ?(\\d)", u"№ $1", true, R"(s/№ ?([0-9])/№ $1/g)"},
};

CleanUpTable Table()
{
    CleanUpTable table;
    for (const BenchRow& row : Rows)
        table.rows.push_back(
            {QString::fromUtf16(row.what), QString::fromUtf16(row.by), false, row.regExp, true});
    return table;
}

double Since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double PeakMegabytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::stod(line.substr(6)) / 1000;
    }
    return 0;
}

double NowMegabytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:"))
            return std::stod(line.substr(6)) / 1000;
    }
    return 0;
}

void Paint(DisplayView& view)
{
    view.viewport()->repaint();
}

bool Report(const char* what, double value, double wanted)
{
    std::printf("%s: %.2f (wanted: at most %.1f)\n", what, value, wanted);
    return value <= wanted;
}

} // namespace

int main(int count, char** values)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, values);
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    bench::Run({std::string(VMK_BIN_DIR) + "/make_book", count > 1 ? values[1] : "15M"}, path + "/book.fb2");
    InitGlobals({folder.filePath(u"vellumark"_s), folder.filePath(u"user"_s)});
    ReadSettings(true);

    DisplayView view;
    view.resize(800, 600);
    view.show();
    std::string bytes = ReadFileText(folder.filePath(u"book.fb2"_s));
    const double bookMegabytes = double(bytes.size()) / 1e6;
    if (!BookToDocument(std::move(bytes), view.document()))
        return 2;
    Paint(view);
    malloc_trim(0);

    // The rows alone, beside perl.
    const CleanUpTable table = Table();
    const std::string text = TextOfDisplay(view.document(), AngleMarks::Restore);
    std::ofstream(path + "/text") << text;
    std::ofstream script(path + "/clean.pl");
    script << "use utf8;\n$_ = <STDIN>;\n";
    for (const BenchRow& row : Rows)
        script << row.perl << ";\n";
    script << "print;\n";
    script.close();
    std::vector<bench::Measure> perl;
    std::vector<double> ours;
    const auto ignore = [](const QString&) {};
    for (int run = 0; run < 3; ++run) {
        perl.push_back(bench::Run({"sh", "-c", "perl -CSD -0777 " + path + "/clean.pl < " + path + "/text"},
                                  path + "/out"));
        QString html = MaskShownAngles(BareHtml(view.document(), 0, view.document().lineCount()));
        std::vector<CleanUpRowResult> results;
        const auto start = std::chrono::steady_clock::now();
        html = ApplyCleanUpRows(std::move(html), table.rows, results, ignore);
        ours.push_back(Since(start));
    }
    std::ranges::sort(ours);
    malloc_trim(0);

    // The whole run in the window.
    const double before = NowMegabytes();
    auto start = std::chrono::steady_clock::now();
    const CleanUpRun run
        = CleanUpBookFragment(view.document(), table, TagPaint::Of(DisplayValuesOfSettings()), ignore);
    Paint(view);
    const double applied = Since(start);
    const double peak = PeakMegabytes();
    start = std::chrono::steady_clock::now();
    view.document().undo();
    view.document().undo();
    Paint(view);
    const double undone = Since(start);

    qsizetype replacements = 0;
    for (const CleanUpRowResult& row : run.rows)
        replacements += row.replacements;
    std::printf("book of %.1f MB, %lld replacements by 20 rows\n", bookMegabytes,
                static_cast<long long>(replacements));
    bool good = Report("apply to painted page, s", applied, WantedSeconds);
    good = Report("undo to painted page, s", undone, WantedUndo) && good;
    good = Report("rows alone / perl", ours[1] / bench::Middle(perl).seconds, WantedRatio) && good;
    good = Report("peak memory above the open book / book", (peak - before) / bookMegabytes, WantedMemory)
        && good;
    return good ? 0 : 1;
}
