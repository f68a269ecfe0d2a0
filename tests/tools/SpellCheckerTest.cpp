#include "SpellChecker.h"

#include "NearWords.h"
#include "SmallDictionaries.h"
#include "SuggestionWorker.h"

#include <gtest/gtest.h>

#include <atomic>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QStringList Names(const std::vector<SpellDictionary>& list)
{
    QStringList names;
    for (const SpellDictionary& dictionary : list)
        names.append(dictionary.name);
    return names;
}

std::vector<SpellDictionary> Installed(const QStringList& names)
{
    std::vector<SpellDictionary> installed;
    for (const QString& name : names)
        installed.push_back({name, name + u".aff"_s, name + u".dic"_s, true});
    return installed;
}

class SpellCheckerTest : public testing::Test
{
protected:
    SpellCheckerTest() { dictionaries.makeUsual(); }

    void choose(const QString& language, const QString& locale = u"C"_s)
    {
        checker.setDictionaries(
            SpellDictionaries(InstalledDictionaries(DictionaryFolders()), language, locale));
    }

    const SmallDictionaries dictionaries;
    SpellShelf shelf;
    SpellChecker checker{shelf};
};

} // namespace

TEST(SpellDictionaries, TheBooksLanguageThenTheUsersDecidesTheMainDictionary)
{
    const auto installed = Installed({u"de_DE"_s, u"en_GB"_s, u"en_US"_s, u"ru_RU"_s});
    EXPECT_EQ(Names(SpellDictionaries(installed, u"ru"_s, u"de_DE"_s).main()), QStringList({u"ru_RU"_s}));
    EXPECT_EQ(Names(SpellDictionaries(installed, u"cs"_s, u"de_DE"_s).main()), QStringList({u"de_DE"_s}));
    EXPECT_EQ(Names(SpellDictionaries(installed, u""_s, u"de_AT.UTF-8"_s).main()), QStringList({u"de_DE"_s}));
    EXPECT_TRUE(SpellDictionaries(installed, u"cs"_s, u"C"_s).main().empty());
}

TEST(SpellDictionaries, TheRequestedVarietyIsFirst)
{
    const auto installed = Installed({u"en_AU"_s, u"en_GB"_s, u"en_US"_s});
    EXPECT_EQ(Names(SpellDictionaries(installed, u"en"_s, u"C"_s).main()).first(), u"en_US"_s);
    EXPECT_EQ(Names(SpellDictionaries(installed, u"en-GB"_s, u"C"_s).main()).first(), u"en_GB"_s);
    EXPECT_EQ(Names(SpellDictionaries(installed, u"en"_s, u"en_AU"_s).main()).first(), u"en_AU"_s);
}

TEST(SpellDictionaries, AnotherScriptHasItsUsualLanguage)
{
    const auto installed = Installed({u"bg_BG"_s, u"de_DE"_s, u"en_US"_s, u"ru_RU"_s, u"uk_UA"_s});
    const SpellDictionaries russian(installed, u"ru"_s, u"de_DE"_s);
    EXPECT_EQ(Names(russian.ofScript(QChar::Script_Cyrillic)).first(), u"ru_RU"_s);
    EXPECT_EQ(Names(russian.ofScript(QChar::Script_Latin)), QStringList({u"en_US"_s, u"de_DE"_s}));
    const SpellDictionaries english(installed, u"en"_s, u"uk_UA"_s);
    EXPECT_EQ(Names(english.ofScript(QChar::Script_Cyrillic)),
              QStringList({u"ru_RU"_s, u"uk_UA"_s, u"bg_BG"_s}));
    const SpellDictionaries ukrainian(installed, u"uk"_s, u"C"_s);
    EXPECT_EQ(Names(ukrainian.ofScript(QChar::Script_Cyrillic)).first(), u"uk_UA"_s);
    EXPECT_TRUE(russian.ofScript(QChar::Script_Greek).empty());
}

TEST_F(SpellCheckerTest, AWordIsCheckedByTheDictionaryOfItsScript)
{
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"слово"));
    EXPECT_FALSE(checker.isSuspicious(u"book"));
    EXPECT_TRUE(checker.isSuspicious(u"слвоо"));
    EXPECT_TRUE(checker.isSuspicious(u"boook"));
    EXPECT_TRUE(checker.isSuspicious(u"Buch"));
    choose(u"de"_s);
    EXPECT_FALSE(checker.isSuspicious(u"Buch"));
    EXPECT_TRUE(checker.isSuspicious(u"book"));
    EXPECT_FALSE(checker.isSuspicious(u"слово"));
}

TEST_F(SpellCheckerTest, AWordInAScriptWithoutDictionaryIsNotSuspicious)
{
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"λόγος"));
    EXPECT_FALSE(checker.isSuspicious(u"日本語"));
}

TEST_F(SpellCheckerTest, AWordOfTwoScriptsIsSuspicious)
{
    choose(u"ru"_s);
    EXPECT_TRUE(checker.isSuspicious(u"cлово")); // with a Latin c
    EXPECT_FALSE(checker.isSuspicious(u"book-слово"));
}

TEST_F(SpellCheckerTest, ACompoundIsRightWhenKnownWholeOrInAllItsParts)
{
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"красно-белый"));
    EXPECT_FALSE(checker.isSuspicious(u"красно\u2011белый"));
    EXPECT_TRUE(checker.isSuspicious(u"красно-белй"));
    EXPECT_FALSE(checker.isSuspicious(u"США-слово"));
}

TEST_F(SpellCheckerTest, SoftHyphensStressMarksAndApostrophesMakeNoDifference)
{
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"сло\u00ADво"));
    EXPECT_FALSE(checker.isSuspicious(u"сло\u0301во"));
    EXPECT_FALSE(checker.isSuspicious(u"слова\u0301"));
    EXPECT_FALSE(checker.isSuspicious(u"п\u0435\u0300рвая"));
    EXPECT_FALSE(checker.isSuspicious(u"don't"));
    EXPECT_FALSE(checker.isSuspicious(u"don’t"));
    EXPECT_TRUE(checker.isSuspicious(u"dont"));
}

TEST_F(SpellCheckerTest, ComposedAndDecomposedLettersAreTheSame)
{
    choose(u"de"_s);
    EXPECT_FALSE(checker.isSuspicious(u"f\u00FCr"));
    EXPECT_FALSE(checker.isSuspicious(u"fu\u0308r"));
    EXPECT_FALSE(checker.isSuspicious(u"е\u0308ж"));
}

TEST_F(SpellCheckerTest, YoAndYeAreAsInTheDictionary)
{
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"ёж"));
    EXPECT_FALSE(checker.isSuspicious(u"еж"));
    EXPECT_TRUE(checker.isSuspicious(u"слёво"));
}

TEST_F(SpellCheckerTest, AWordOfAMegabyteIsSuspicious)
{
    choose(u"ru"_s);
    EXPECT_TRUE(checker.isSuspicious(QString(1 << 20, u'а')));
    EXPECT_TRUE(checker.suggestions(QString(1 << 20, u'а')).isEmpty());
}

TEST_F(SpellCheckerTest, ADamagedDictionaryIsReportedAndTheNextIsUsed)
{
    dictionaries.folder.Make(u"ru_RU.dic"_s, "no number\n");
    dictionaries.make("ru_UA", "слово");
    choose(u"ru"_s);
    EXPECT_FALSE(checker.isSuspicious(u"слово"));
    EXPECT_TRUE(checker.isSuspicious(u"слвоо"));
    ASSERT_EQ(shelf.problems().size(), 1);
    EXPECT_TRUE(shelf.problems().first().contains(u"ru_RU.dic"_s));
}

TEST_F(SpellCheckerTest, WithoutADictionaryThereIsNone)
{
    EXPECT_FALSE(checker.hasDictionary());
    choose(u"ru"_s);
    EXPECT_TRUE(checker.hasDictionary());
    for (const char16_t* name : {u"ru_RU.dic", u"en_US.dic", u"de_DE.dic"})
        dictionaries.folder.Make(QString::fromUtf16(name), "damaged\n");
    SpellShelf other;
    SpellChecker second(other);
    second.setDictionaries(SpellDictionaries(InstalledDictionaries(DictionaryFolders()), u"ru"_s, u"C"_s));
    EXPECT_FALSE(second.hasDictionary());
}

TEST_F(SpellCheckerTest, SuggestionsHaveTheApostropheOfTheText)
{
    choose(u"en"_s);
    EXPECT_EQ(checker.suggestions(u"dont").value(0), u"don't"_s);
    EXPECT_EQ(checker.suggestions(u"don’tt").value(0), u"don’t"_s);
    EXPECT_EQ(checker.suggestions(u"bo\u00ADoks").value(0), u"book"_s);
}

TEST(NearWords, WordsWithOneTypingErrorAreInTheOrderOfLikelihood)
{
    const QStringList right = {u"form"_s, u"from"_s, u"fro"_s, u"farm"_s, u"forms"_s};
    const auto isRight = [&](const QString& word) { return right.contains(word); };
    const auto always = [] { return true; };
    EXPECT_EQ(NearWords(u"fomr"_s, u"as"_s, isRight, always), QStringList({u"form"_s}));
    EXPECT_EQ(NearWords(u"frm"_s, u"oa"_s, isRight, always),
              QStringList({u"fro"_s, u"form"_s, u"from"_s, u"farm"_s}));
    EXPECT_EQ(NearWords(
                  u"Farn"_s, u"m"_s, [](const QString& word) { return word == u"Farm"; }, always),
              QStringList({u"Farm"_s}));
    EXPECT_EQ(NearWords(u"formfarm"_s, u""_s, isRight, always), QStringList({u"form farm"_s}));
    EXPECT_TRUE(NearWords(u""_s, u"ab"_s, isRight, always).isEmpty());
}

TEST(NearWords, TheSearchEndsOnRequest)
{
    int asked = 0;
    const auto twice = [&] { return ++asked <= 2; };
    int judged = 0;
    const auto count = [&](const QString&) { return ++judged > 0; };
    EXPECT_EQ(NearWords(u"abcdef"_s, u"xyz"_s, count, twice).size(), 2);
    EXPECT_EQ(judged, 2);
}

TEST_F(SpellCheckerTest, TheWorkerReportsItsSuggestions)
{
    std::atomic<int> reports = 0;
    SuggestionWorker worker([&](const QString&) { ++reports; });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    EXPECT_FALSE(worker.found(u"boook"_s).complete);
    worker.setDictionaries(SpellDictionaries(InstalledDictionaries(DictionaryFolders()), u"en"_s, u"C"_s));
    worker.request(u"boook"_s, u"tittle"_s);
    const SuggestionWorker::Found found = worker.wait(u"boook"_s, end);
    EXPECT_TRUE(found.complete);
    EXPECT_EQ(found.words.value(0), u"book"_s);
    EXPECT_EQ(worker.wait(u"tittle"_s, end).words.value(0), u"title"_s);
    EXPECT_GE(reports, 3);
    // Other dictionaries, other suggestions.
    worker.setDictionaries(SpellDictionaries({}, u"en"_s, u"C"_s));
    worker.request(u"boook"_s, {});
    EXPECT_TRUE(worker.wait(u"boook"_s, end).complete);
    EXPECT_TRUE(worker.found(u"boook"_s).words.isEmpty());
}

TEST_F(SpellCheckerTest, AWorkerCanBeDestroyedAtAnyTime)
{
    const SpellDictionaries chosen(InstalledDictionaries(DictionaryFolders()), u"en"_s, u"C"_s);
    for (int i = 0; i < 20; ++i) {
        SuggestionWorker worker([](const QString&) {});
        worker.setDictionaries(chosen);
        worker.request(u"boook"_s, u"tittle"_s);
        if (i % 2 == 0)
            (void)worker.wait(u"boook"_s, std::chrono::steady_clock::now() + std::chrono::milliseconds(i));
    }
}

} // namespace vmk
