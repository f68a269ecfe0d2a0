// Compares the walk of the spell check with `hunspell -l` on the same text, in one run: the time for a whole
// book, the delays that the user notices, and the words that both report.

#include "DisplayPage.h"
#include "Files.h"
#include "ProgramTiming.h"
#include "SettingsVariables.h"
#include "SpellCheckWalk.h"

#include <QCoreApplication>
#include <QSet>

#include <cstdlib>
#include <filesystem>
#include <map>

using namespace vmk;
using namespace vmk::bench;
using namespace Qt::StringLiterals;

namespace {

constexpr double WantedRatio = 1.0 / 8;
constexpr double WantedColdStart = 300; // milliseconds, as the next two
constexpr double WantedStart = 50;
constexpr double WantedNext = 20;

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A window that shows nothing.
class NoWindow final : public SpellCheckWindow
{
public:
    void showReport(const QString&) override { }
    void hideReport() override { }
    void showWord(const QString& word) override { words.insert(word); }
    void clearWord() override { }
    void setStartEnabled(bool) override { }
    void unload() override
    {
        std::fprintf(stderr, "no dictionary is installed\n");
        std::exit(2);
    }

    QSet<QString> words;
};

struct Times
{
    double coldStart = 0;
    double start = 0;
    std::vector<double> next;
    double whole = 0;
};

/// Ignores each suspicious word up to the end of the book.
Times WalkBook(DisplayDocument& document, NoWindow& window)
{
    Times times;
    SpellShelf shelf;
    SpellCheckWalk walk(window, shelf);
    for (double* start : {&times.coldStart, &times.start}) {
        document.setSelection({}, {});
        const auto begun = Clock::now();
        walk.Start(document);
        *start = MillisecondsSince(begun);
    }
    const auto begun = Clock::now();
    while (walk.isAtHit()) {
        const auto step = Clock::now();
        walk.Continue();
        times.next.push_back(MillisecondsSince(step));
    }
    times.whole = times.start + MillisecondsSince(begun);
    std::ranges::sort(times.next);
    return times;
}

/// Why only one of the two reports a word; empty if no rule explains it.
std::string Explain(const QString& word, const QSet<QString>& cutByUs, bool reportedByUs)
{
    if (reportedByUs && (word.contains(u'-') || word.contains(u'\'') || word.contains(QChar(0x2019))))
        return "ours only: hunspell checks the parts around hyphens and apostrophes";
    if (!reportedByUs && !cutByUs.contains(word))
        return "hunspell only: capitals, part of a compound, of an address, or of a word with digits";
    if (reportedByUs)
        return "ours only: right in a dictionary of another script or language";
    return {};
}

bool CompareWords(const QSet<QString>& ours, const QSet<QString>& theirs, const QString& text)
{
    QSet<QString> cut;
    SpellWords words(text);
    while (words.next())
        cut.insert(words.word().toString());
    std::map<std::string, int> kinds;
    int unexplained = 0;
    const auto look = [&](const QSet<QString>& from, const QSet<QString>& other, bool reportedByUs) {
        for (const QString& word : from) {
            if (other.contains(word))
                continue;
            const std::string kind = Explain(word, cut, reportedByUs);
            ++kinds[kind];
            if (kind.empty() && ++unexplained <= 10)
                std::printf("  not explained: %s\n", word.toUtf8().constData());
        }
    };
    look(ours, theirs, true);
    look(theirs, ours, false);
    std::printf("different suspicious words: ours %lld, hunspell %lld, common %lld\n", (long long)ours.size(),
                (long long)theirs.size(), (long long)(QSet<QString>(ours) & theirs).size());
    for (const auto& [kind, count] : kinds)
        std::printf("  %5d %s\n", count, kind.empty() ? "not explained" : kind.c_str());
    return unexplained == 0;
}

} // namespace

int main(int count, char** values)
{
    const QCoreApplication application(count, values);
    const std::string programs = VMK_BIN_DIR;
    const std::string folder
        = std::filesystem::temp_directory_path() / ("bench_spell." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::string book = count > 1 ? values[1] : "";
    if (book.empty()) {
        book = folder + "/book.fb2";
        Run({programs + "/make_book", "15M"}, book);
    }
    const std::string pageFile = folder + "/page.htm";
    Run({programs + "/vmk", "display", book, "--out", pageFile}, folder + "/said");

    SoundsOn = 0;
    DisplayDocument document;
    document.loadPage(QByteArray::fromStdString(ReadContent(QString::fromStdString(pageFile)).bytes));
    const QString text = vmk::page::innerText(document);
    const QByteArray utf8 = text.toUtf8();
    (void)ReplaceContent(QString::fromStdString(folder + "/text"), {utf8.constData(), size_t(utf8.size())});

    NoWindow window;
    const Times times = WalkBook(document, window);
    const std::string output = folder + "/output";
    const Measure hunspell
        = Run({"hunspell", "-l", "-i", "utf-8", "-d", "ru_RU,en_US", folder + "/text"}, output);
    QSet<QString> theirs;
    for (const QByteArray& word :
         QByteArray::fromStdString(ReadContent(QString::fromStdString(output)).bytes).split('\n')) {
        if (!word.isEmpty())
            theirs.insert(QString::fromUtf8(word));
    }
    std::filesystem::remove_all(folder);

    const double ratio = times.whole / 1000 / hunspell.seconds;
    const double middle = times.next.empty() ? 0 : times.next[times.next.size() / 2];
    const double longest = times.next.empty() ? 0 : times.next.back();
    std::printf("text %.1f MB, %zu hits\n", double(utf8.size()) / 1e6, times.next.size());
    std::printf("whole book: walk %.2f s, hunspell -l %.2f s, ratio %.3f (wanted: at most %.3f)\n",
                times.whole / 1000, hunspell.seconds, ratio, WantedRatio);
    std::printf("first hit: cold %.0f ms (wanted: %.0f), later %.1f ms (wanted: %.0f)\n", times.coldStart,
                WantedColdStart, times.start, WantedStart);
    std::printf("from word to word: middle %.2f ms, longest %.1f ms (wanted: %.0f)\n", middle, longest,
                WantedNext);
    const bool sameWords = CompareWords(window.words, theirs, text);
    return sameWords && ratio <= WantedRatio ? 0 : 1;
}
