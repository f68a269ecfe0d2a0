// Compares the walk of the spell check with `hunspell -l` on the same text, in one run: the time for a whole
// book, the delays that the user notices, and the words that both report.

#include "DisplayPage.h"
#include "Files.h"
#include "HunspellComparison.h"
#include "ProgramTiming.h"
#include "SettingsVariables.h"
#include "SpellCheckWalk.h"

#include <QCoreApplication>
#include <QSet>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

using namespace vmk;
using namespace vmk::bench;
using namespace Qt::StringLiterals;

namespace {

constexpr double WantedRatio = 1.0 / 8;
constexpr double WantedColdStart = 300; // milliseconds, as the next two
constexpr double WantedStart = 50;
constexpr double WantedNext = 20;

constexpr std::chrono::milliseconds TimeToRead(500);

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
/// @param dictionaries receives the dictionaries of the walk.
Times WalkBook(DisplayDocument& document, NoWindow& window, SpellDictionaries* dictionaries)
{
    Times times;
    SpellShelf shelf;
    SpellCheckWalk walk(window, shelf);
    for (double* start : {&times.coldStart, &times.start}) {
        document.setSelection({}, {});
        const auto begun = Clock::now();
        walk.Start(document);
        *start = MillisecondsSince(begun);
        // The user reads the first word while the second dictionary is being loaded.
        std::this_thread::sleep_for(TimeToRead);
    }
    const auto begun = Clock::now();
    while (walk.isAtHit()) {
        const auto step = Clock::now();
        walk.Continue();
        times.next.push_back(MillisecondsSince(step));
    }
    *dictionaries = walk.dictionaries();
    times.whole = times.start + MillisecondsSince(begun);
    std::ranges::sort(times.next);
    return times;
}

bool CompareWords(const QSet<QString>& ours, const QSet<QString>& theirs, const QString& text,
                  const SpellDictionaries& dictionaries)
{
    SpellShelf shelf;
    SpellChecker checker(shelf);
    checker.setDictionaries(dictionaries);
    const reference::HunspellComparison comparison(
        text, ours, theirs, [&](QStringView word) { return checker.isSuspicious(word); });
    std::printf("different suspicious words: ours %lld, hunspell %lld, common %lld\n", (long long)ours.size(),
                (long long)theirs.size(), (long long)(QSet<QString>(ours) & theirs).size());
    const reference::Differences kinds = comparison.differences();
    for (const auto& [kind, words] : kinds)
        std::printf("  %5lld %s: %s\n", (long long)words.size(),
                    kind.empty() ? "NOT EXPLAINED" : kind.c_str(),
                    words.first(std::min<qsizetype>(words.size(), 6)).join(u' ').toUtf8().constData());
    return !kinds.contains("");
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

    NoWindow window;
    SpellDictionaries dictionaries({}, {}, {});
    const Times times = WalkBook(document, window, &dictionaries);
    const std::string output = folder + "/output";
    const Measure empty = Run({"hunspell", "-l", "-i", "utf-8", "-d", "ru_RU,en_US", "/dev/null"}, output);
    (void)ReplaceContent(QString::fromStdString(folder + "/text"), {utf8.constData(), size_t(utf8.size())});
    const Measure hunspell
        = Run({"hunspell", "-l", "-i", "utf-8", "-d", "ru_RU,en_US", folder + "/text"}, output);
    // For its words, one word a line: it divides long lines, even inside a word.
    const QByteArray lines = QByteArray(utf8).replace(' ', '\n');
    (void)ReplaceContent(QString::fromStdString(folder + "/text"), {lines.constData(), size_t(lines.size())});
    const Measure hunspellWords
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
    std::printf(
        "whole book: walk %.2f s, hunspell -l %.2f s, ratio %.3f (wanted: at most %.3f); with one word a "
        "line %.2f s\n",
        times.whole / 1000, hunspell.seconds, ratio, WantedRatio, hunspellWords.seconds);
    std::printf(
        "first hit: cold %.0f ms (wanted: %.0f; hunspell -l without text: %.0f ms), later %.1f ms (wanted: "
        "%.0f)\n",
        times.coldStart, WantedColdStart, empty.seconds * 1000, times.start, WantedStart);
    std::printf("from word to word: middle %.2f ms, longest %.1f ms (wanted: %.0f)\n", middle, longest,
                WantedNext);
    const bool sameWords = CompareWords(window.words, theirs, text, dictionaries);
    return sameWords && ratio <= WantedRatio ? 0 : 1;
}
