// The walk and `hunspell -l` must report the same words of real books, except for the rules by which the
// program cuts and skips words.

#include "HunspellComparison.h"

#include "BookToDisplay.h"
#include "Corpus.h"
#include "DisplayPage.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "SpellCheckWalk.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

#include <iostream>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int MostCharacters = 40'000;

/// A window that only records the words.
class WordList final : public SpellCheckWindow
{
public:
    void showReport(const QString&) override { }
    void hideReport() override { }
    void showWord(const QString& word) override { words.insert(word); }
    void clearWord() override { }
    void setStartEnabled(bool) override { }
    void unload() override { }

    QSet<QString> words;
};

TEST(HunspellComparison, TheSameWordsOfRealBooksAreSuspicious)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    if (QStandardPaths::findExecutable(u"hunspell"_s).isEmpty())
        GTEST_SKIP() << "hunspell is not installed";
    ReadSettings(true);
    SoundsOn = 0;
    for (const test::CorpusBook& book : test::CorpusBooks()) {
        std::string html = book.bytes;
        if (!ConvertBookToDisplay(html, false))
            continue;
        DisplayDocument document;
        document.loadPage(QByteArray::fromStdString(html));
        WordList list;
        SpellShelf shelf;
        SpellCheckWalk walk(list, shelf);
        // The first part of a book: hunspell is slow.
        Position end;
        for (int characters = 0; end.line + 1 < document.lineCount() && characters < MostCharacters;
             ++end.line)
            characters += int(document.line(end.line).text.size());
        end.offset = int(document.line(end.line).text.size());
        // Some books are one long line, which is cut at a blank.
        if (end.offset > MostCharacters)
            end.offset
                = int(std::max<qsizetype>(0, document.line(end.line).text.lastIndexOf(u' ', MostCharacters)));
        document.setSelection({}, end);
        const QString text = page::createRange(document).text();
        walk.Start(document);
        while (walk.isAtHit())
            walk.Continue();

        QStringList paths;
        for (const QChar::Script script : {QChar::Script_Cyrillic, QChar::Script_Latin}) {
            const auto chosen = walk.dictionaries().ofScript(script);
            if (!chosen.empty())
                paths.append(chosen.front().wordFile.chopped(4));
        }
        if (paths.size() < 2)
            GTEST_SKIP() << "no dictionaries for Cyrillic and Latin are installed";
        QString problem;
        const QSet<QString> theirs = reference::HunspellWords(text, paths, &problem);
        ASSERT_TRUE(problem.isEmpty()) << problem.toStdString();
        SpellChecker checker(shelf);
        checker.setDictionaries(walk.dictionaries());
        const reference::HunspellComparison comparison(
            text, list.words, theirs, [&](QStringView word) { return checker.isSuspicious(word); });
        std::cout << book.name << ": own " << list.words.size() << ", hunspell " << theirs.size()
                  << ", common " << (QSet<QString>(list.words) & theirs).size() << '\n';
        for (const auto& [kind, words] : comparison.differences()) {
            std::cout << "  " << words.size() << ' ' << kind << ": "
                      << words.first(std::min<qsizetype>(words.size(), 8)).join(u' ').toStdString() << '\n';
            EXPECT_FALSE(kind.empty()) << book.name << ": " << words.join(u' ').toStdString();
        }
        EXPECT_GT((QSet<QString>(list.words) & theirs).size(), 0);
    }
}

} // namespace
} // namespace vmk
