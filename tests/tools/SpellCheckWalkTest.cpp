#include "SpellCheckWalk.h"

#include "BookVariables.h"
#include "Boxes.h"
#include "Desktop.h"
#include "DisplayPage.h"
#include "SettingsVariables.h"
#include "SmallDictionaries.h"
#include "StartUpVariables.h"

#include <QFile>

#include <gtest/gtest.h>

#include <random>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// A walk over a document of lines, which records the calls to its window.
class SpellCheckWalkTest : public testing::Test, protected SpellCheckWindow
{
protected:
    SpellCheckWalkTest()
        : boxes(BoxSeam(),
                [this](BoxKind kind, const QString& text, const QString&) {
                    EXPECT_EQ(kind, BoxKind::Stop);
                    boxTexts.append(text);
                    return false;
                })
        , beeps(BeepSeam(), [this] { ++beepCount; })
    {
        dictionaries.makeUsual();
        CustomDictionaryFile = dictionaries.folder.Path(u"CustomDictionary.dat"_s);
        SoundsOn = 0;
        BookUnchanged = true;
        UndoSteps = 0;
    }

    void showReport(const QString& text) override { reports.append(text); }
    void hideReport() override { reports.append(QString()); }
    void showWord(const QString& word) override { shown.append(word); }
    void clearWord() override { ++cleared; }
    void setStartEnabled(bool enabled) override { startEnabled = enabled; }
    void unload() override { ++unloads; }

    void load(const QStringList& lines)
    {
        QString html = u"<HTML><BODY>"_s;
        for (const QString& line : lines)
            html += u"<DIV>"_s + line + u"</DIV>"_s;
        document.loadPage((html + u"</BODY></HTML>"_s).toUtf8());
        document.setSelection({}, {});
    }
    QString text() { return page::innerText(document); }
    QString selected() { return page::createRange(document).text(); }
    QString lastReport() { return reports.isEmpty() ? QString() : reports.last(); }
    void start() { walk.Start(document); }
    /// Ignores all words to the end of the area.
    QStringList ignoreAll()
    {
        start();
        for (int i = 0; walk.isAtHit() && i < 100'000; ++i) {
            EXPECT_EQ(selected(), shown.last());
            walk.Continue();
        }
        return shown;
    }
    std::string customFile()
    {
        QFile file(CustomDictionaryFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(none)";
    }

    const SmallDictionaries dictionaries;
    SpellShelf shelf;
    DisplayDocument document;
    SpellCheckWalk walk{*this, shelf};
    QStringList reports;
    QStringList shown;
    QStringList boxTexts;
    int cleared = 0;
    int unloads = 0;
    int beepCount = 0;
    bool startEnabled = true;

private:
    const SeamGuard<bool(BoxKind, const QString&, const QString&)> boxes;
    const SeamGuard<void()> beeps;
};

const QLatin1StringView Finished("Spell Check has been finished\r\n");

} // namespace

TEST_F(SpellCheckWalkTest, TheCursorAtTheEndFinishesAtOnce)
{
    load({u"one tehh"_s});
    document.setSelection(document.end(), document.end());
    start();
    EXPECT_TRUE(shown.isEmpty());
    EXPECT_EQ(lastReport(),
              Finished + u"search area: from cursor down\r\nwords found: 0\r\nwords replaced: 0"_s);
    EXPECT_TRUE(startEnabled);
    EXPECT_EQ(beepCount, 1);
}

TEST_F(SpellCheckWalkTest, AHitIsSelectedShownAndReported)
{
    load({u"one tehh two"_s});
    start();
    EXPECT_EQ(shown, QStringList({u"tehh"_s}));
    EXPECT_EQ(selected(), u"tehh"_s);
    EXPECT_FALSE(startEnabled);
    const QStringList expected = {u"\r\n...loading dictionary...\r\n...wait, please..."_s,
                                  u"\r\n...collecting suspicious words...\r\n...wait, please..."_s, QString(),
                                  u"\r\n...getting suggestions...\r\nsearch area: from cursor down\r\n"_s,
                                  u"search area: from cursor down\r\nwords found: 1\r\nwords replaced: 0"_s};
    EXPECT_EQ(reports, expected);
    EXPECT_TRUE(walk.HitFound);
    EXPECT_EQ(walk.WordsFound, 1);
    walk.Continue();
    EXPECT_EQ(lastReport(),
              Finished + u"search area: from cursor down\r\nwords found: 1\r\nwords replaced: 0"_s);
}

TEST_F(SpellCheckWalkTest, ThePartAboveTheCursorIsNotChecked)
{
    load({u"aaaa"_s, u"one bbbb"_s});
    document.setSelection({1, 0}, {1, 0});
    EXPECT_EQ(ignoreAll(), QStringList({u"bbbb"_s}));
}

TEST_F(SpellCheckWalkTest, ASelectionGrowsToWordsAndIsTheWholeArea)
{
    load({u"aaaa bbbb cccc dddd"_s});
    document.setSelection({0, 7}, {0, 12});
    EXPECT_EQ(ignoreAll(), QStringList({u"bbbb"_s, u"cccc"_s}));
    EXPECT_TRUE(lastReport().contains(u"search area: selected text"_s));
}

TEST_F(SpellCheckWalkTest, ALargeSelectionIsTheFirstChunkWhole)
{
    load(QStringList(1000, u"one two three aaaa"_s));
    document.setSelection({}, document.end());
    EXPECT_EQ(ignoreAll().size(), 1000);
}

TEST_F(SpellCheckWalkTest, EveryHitIsSelectedOverManyLinesAndChunks)
{
    QStringList lines;
    for (int i = 0; i < 500; ++i)
        lines.append(i % 3 == 0 ? u"one two &lt;title&gt; слово bbbb"_s : u"well-known first cccc-dddd"_s);
    load(lines);
    EXPECT_EQ(ignoreAll().size(), 500);
    EXPECT_EQ(walk.WordsFound, 500);
}

TEST_F(SpellCheckWalkTest, AChunkWithoutErrorsMovesOnWithoutAnotherReport)
{
    QStringList lines(300, u"one two three"_s);
    lines.append(u"aaaa"_s);
    load(lines);
    start();
    EXPECT_EQ(selected(), u"aaaa"_s);
    reports.removeDuplicates();
    EXPECT_EQ(reports.size(), 5);
}

TEST_F(SpellCheckWalkTest, TheLimitOfAChunkDividesNoCompound)
{
    for (int before = 190; before < 202; ++before) {
        load({u"one "_s.repeated(before) + u"красно-белый don’t слово-слово ok"_s});
        shown.clear();
        EXPECT_EQ(ignoreAll(), QStringList({u"ok"_s})) << before;
    }
}

TEST_F(SpellCheckWalkTest, ALongerReplacementShiftsTheNextHit)
{
    load({u"aaaa one bbbb bbbb, aaaa"_s});
    start();
    walk.Replace(u"something longer"_s);
    EXPECT_EQ(walk.PositionShift, 12);
    EXPECT_EQ(selected(), u"bbbb"_s);
    EXPECT_EQ(document.selection().start(), (Position{0, 21}));
    walk.Replace(u"b"_s);
    EXPECT_EQ(document.selection().start(), (Position{0, 23}));
    walk.Continue();
    EXPECT_EQ(selected(), u"aaaa"_s);
    EXPECT_EQ(text(), u"something longer one b bbbb, aaaa"_s);
    EXPECT_EQ(walk.WordsReplaced, 2);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(SpellCheckWalkTest, AnEmptyReplacementDeletesTheWord)
{
    load({u"one aaaa two"_s});
    start();
    walk.Replace(QString());
    EXPECT_EQ(text(), u"one  two"_s);
}

TEST_F(SpellCheckWalkTest, ABlankAtTheEndOfTheRangeIsKept)
{
    load({u"one teh two"_s});
    start();
    walk.SpellChunk = TextRange(document, {0, 4}, {0, 8});
    walk.Replace(u"the"_s);
    EXPECT_EQ(text(), u"one the two"_s);
}

TEST_F(SpellCheckWalkTest, AReplacementKeepsTagsAndMarks)
{
    load({u"<SPAN class=t>&lt;p&gt;</SPAN>one <B>aaaa</B> two<SPAN class=t>&lt;/p&gt;</SPAN>"_s});
    document.setSelection({0, 3}, {0, 3});
    start();
    EXPECT_EQ(selected(), u"aaaa"_s);
    walk.Replace(u"three"_s);
    EXPECT_TRUE(QString::fromUtf8(document.savePage()).contains(u"one <B>three</B> two<SPAN class=t>"_s));
}

TEST_F(SpellCheckWalkTest, TheSameWordIsFoundAgainAfterItWasIgnored)
{
    load({u"aaaa one aaaa"_s});
    EXPECT_EQ(ignoreAll(), QStringList({u"aaaa"_s, u"aaaa"_s}));
}

TEST_F(SpellCheckWalkTest, AWordOfTheCustomDictionaryIsSkippedInItsCaseOnly)
{
    walk.Custom.AddWord(u"aaaa"_s);
    walk.Custom.AddWord(u"bb-cc"_s);
    load({u"aaaa Aaaa bb-cc"_s, u"bb-cc dddd bb-cc"_s});
    EXPECT_EQ(ignoreAll(), QStringList({u"Aaaa"_s, u"dddd"_s}));
    EXPECT_EQ(walk.WordsFound, 2);
}

TEST_F(SpellCheckWalkTest, AddingWritesTheFileAtOnceAndContinues)
{
    load({u"aaaa one aaaa bbbb"_s});
    start();
    walk.Add(u"aaaa"_s);
    EXPECT_EQ(customFile(), "aaaa\r\n");
    EXPECT_EQ(selected(), u"bbbb"_s);
    EXPECT_EQ(text(), u"aaaa one aaaa bbbb"_s);
}

TEST_F(SpellCheckWalkTest, AddingBlanksWritesTheFileUnchangedAndContinues)
{
    load({u"aaaa bbbb"_s});
    start();
    walk.Add(u"   "_s);
    EXPECT_EQ(customFile(), "");
    EXPECT_EQ(selected(), u"bbbb"_s);
    walk.Add(QString());
    EXPECT_EQ(selected(), u"bbbb"_s);
}

TEST_F(SpellCheckWalkTest, WithoutAnyDictionaryABoxIsShownAndTheWindowCloses)
{
    for (const char16_t* name : {u"ru_RU.dic", u"en_US.dic", u"de_DE.dic"})
        QFile::remove(dictionaries.folder.Path(QString::fromUtf16(name)));
    load({u"aaaa"_s});
    start();
    EXPECT_EQ(boxTexts, QStringList({u"cannot find Word dictionary"_s}));
    EXPECT_EQ(unloads, 1);
    EXPECT_TRUE(shown.isEmpty());
}

TEST_F(SpellCheckWalkTest, TheLanguageIsTheOneThatTheDisplayShows)
{
    load({u"&lt;lang&gt;de&lt;/lang&gt;"_s, u"&lt;body&gt;"_s, u"Buch book слово"_s});
    document.setSelection({2, 0}, {2, 0});
    EXPECT_EQ(ignoreAll(), QStringList({u"book"_s}));
    shown.clear();
    document.replaceText({0, 6}, {0, 8}, u"en"_s);
    document.setSelection({2, 0}, {2, 0});
    EXPECT_EQ(ignoreAll(), QStringList({u"Buch"_s}));
}

TEST_F(SpellCheckWalkTest, TheActivationSetsTheAreaToTheSelectionOrTheWholeText)
{
    load({u"one two"_s});
    walk.TakeArea(document);
    EXPECT_EQ(walk.SearchAreaText, u"search area: whole text"_s);
    EXPECT_EQ(walk.SpellChunk.text(), u"one two"_s);
    EXPECT_TRUE(walk.SpellArea.isEmpty());
    document.setSelection({0, 0}, {0, 3});
    walk.TakeArea(document);
    EXPECT_EQ(walk.SearchAreaText, u"search area: selected text"_s);
    EXPECT_EQ(walk.SpellArea.text(), u"one"_s);
}

TEST_F(SpellCheckWalkTest, WithoutAHitTheBookIsNotReplaced)
{
    load({u"one two"_s});
    walk.TakeArea(document);
    walk.Replace(u"x"_s);
    walk.Replace(QString());
    EXPECT_EQ(text(), u"one two"_s);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(SpellCheckWalkTest, ContinuingWithoutACheckFinishes)
{
    load({u"aaaa"_s});
    walk.Continue();
    EXPECT_TRUE(lastReport().startsWith(Finished));
    EXPECT_TRUE(shown.isEmpty());
}

TEST_F(SpellCheckWalkTest, AnotherPageEndsTheCheck)
{
    load({u"aaaa bbbb"_s});
    start();
    load({u"cccc"_s});
    walk.PageReplaced();
    EXPECT_TRUE(lastReport().startsWith(Finished));
    walk.Replace(u"x"_s);
    EXPECT_EQ(text(), u"cccc"_s);
}

TEST_F(SpellCheckWalkTest, TextCanBeDeletedAtAHit)
{
    load({u"aaaa bbbb cccc"_s});
    start();
    document.deleteRange({}, document.end());
    walk.Continue();
    walk.Continue();
    walk.Continue();
    EXPECT_EQ(text(), QString());
}

TEST_F(SpellCheckWalkTest, AWordOfAMegabyteIsAHit)
{
    const QString word(1 << 20, u'a');
    load({u"one "_s + word + u" bbbb"_s});
    EXPECT_EQ(ignoreAll(), QStringList({word, u"bbbb"_s}));
}

TEST_F(SpellCheckWalkTest, WalkingWithoutReplacingNeverChangesTheDocument)
{
    std::minstd_rand random(5);
    const QStringList pieces = {u"one "_s,   u"aaaa"_s,   u"-"_s,          u"'"_s,         u" "_s,
                                u"слово"_s,  u"слвоо "_s, u"&lt;p&gt;"_s,  u"<B>bb</B>"_s, u"\u00AD"_s,
                                u"\u0301"_s, u"12 "_s,    u"\U0001F600"_s, u"ok. "_s,      u"&nbsp;"_s};
    for (int round = 0; round < 60; ++round) {
        QStringList lines;
        for (unsigned line = 1 + random() % 30; line > 0; --line) {
            QString text;
            for (unsigned i = random() % 60; i > 0; --i)
                text += pieces[qsizetype(random() % size_t(pieces.size()))];
            lines.append(text);
        }
        load(lines);
        const QByteArray before = document.savePage();
        shown.clear();
        const QStringList found = ignoreAll();
        EXPECT_EQ(document.savePage(), before);
        EXPECT_FALSE(document.canUndo());

        // The same words as in one go.
        QStringList expected;
        SpellChecker checker(shelf);
        checker.setDictionaries(walk.dictionaries());
        const QString whole = text();
        SpellWords words(whole);
        while (words.next()) {
            if (checker.isSuspicious(words.word()))
                expected.append(words.word().toString());
        }
        EXPECT_EQ(found, expected);
    }
}

} // namespace vmk
