#include "Speller.h"
#include "SmallDictionaries.h"
#include "SpellDictionary.h"
#include "Trial.h"
#include "Workplace.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <random>
#include <sys/stat.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class SpellerTest : public testing::Test
{
protected:
    /// The dictionary of that name; one that does not exist if it is not installed.
    static SpellDictionary find(const QString& name)
    {
        for (const SpellDictionary& dictionary : InstalledDictionaries(DictionaryFolders())) {
            if (dictionary.name == name)
                return dictionary;
        }
        return {name, u"/none.aff"_s, u"/none.dic"_s, false};
    }
    std::unique_ptr<Speller> load(const QString& name) { return Speller::Load(find(name), &problem); }

    const SmallDictionaries dictionaries;
    QString problem;
};

} // namespace

TEST_F(SpellerTest, AWordOfTheDictionaryIsRight)
{
    dictionaries.make("ru_RU", "слово ёж");
    const auto speller = load(u"ru_RU"_s);
    ASSERT_TRUE(speller) << problem.toStdString();
    EXPECT_TRUE(speller->isRight(u"слово"));
    EXPECT_TRUE(speller->isRight(u"Слово"));
    EXPECT_TRUE(speller->isRight(u"ёж"));
    EXPECT_FALSE(speller->isRight(u"еж"));
    EXPECT_FALSE(speller->isRight(u"слво"));
    EXPECT_EQ(speller->suggestions(u"слво").value(0), u"слово"_s);
}

TEST_F(SpellerTest, ADictionaryInAnOlderEncodingIsRead)
{
    // "дом" and "мама" in KOI8-R.
    dictionaries.make("ru_RU", "\xc4\xcf\xcd \xcd\xc1\xcd\xc1", "SET KOI8-R\nTRY \xc1\xcf\n");
    const auto speller = load(u"ru_RU"_s);
    ASSERT_TRUE(speller) << problem.toStdString();
    EXPECT_TRUE(speller->isRight(u"дом"));
    EXPECT_FALSE(speller->isRight(u"том"));
    EXPECT_FALSE(speller->isRight(u"日本"));
    EXPECT_EQ(speller->tryLetters(), u"ао"_s);
    EXPECT_EQ(speller->suggestions(u"доом").value(0), u"дом"_s);
}

TEST_F(SpellerTest, AWordOfAMegabyteIsNotRight)
{
    dictionaries.make("en_US", "one two");
    const auto speller = load(u"en_US"_s);
    ASSERT_TRUE(speller);
    const QString word(1 << 20, u'a');
    EXPECT_FALSE(speller->isRight(word));
    EXPECT_TRUE(speller->suggestions(word).isEmpty());
}

TEST_F(SpellerTest, LoneSurrogatesAreNotRightAndDoNoHarm)
{
    dictionaries.make("en_US", "one two");
    const auto speller = load(u"en_US"_s);
    ASSERT_TRUE(speller);
    const QString word(20, QChar(0xD800));
    EXPECT_FALSE(speller->isRight(word));
    (void)speller->suggestions(word);
}

TEST_F(SpellerTest, AMissingDictionaryIsReported)
{
    EXPECT_FALSE(load(u"en_US"_s));
    EXPECT_FALSE(problem.isEmpty());
}

TEST_F(SpellerTest, AFileWithoutAWordCountIsNoDictionary)
{
    dictionaries.folder.Make(u"en_US.aff"_s, "SET UTF-8\n");
    for (const char* words : {"", "one\ntwo\n", "999999999999\none\n", "0\n", "\xff\xfe\n", "-5\none\n"}) {
        dictionaries.folder.Make(u"en_US.dic"_s, words);
        EXPECT_FALSE(load(u"en_US"_s)) << words;
        EXPECT_FALSE(problem.isEmpty());
    }
}

TEST_F(SpellerTest, AnUnknownEncodingIsRefused)
{
    for (const char* name : {"NO-SUCH-ENCODING", "microsoft-"}) {
        dictionaries.make("en_US", "one two", "SET " + std::string(name) + "\n");
        EXPECT_FALSE(load(u"en_US"_s)) << name;
        EXPECT_FALSE(problem.isEmpty());
    }
}

TEST_F(SpellerTest, ADictionaryThatKnowsNoneOfItsWordsIsRefused)
{
    dictionaries.make("en_US", "one/F two/F", "SET UTF-8\nFORBIDDENWORD F\n");
    EXPECT_FALSE(load(u"en_US"_s));
    EXPECT_FALSE(problem.isEmpty());
}

TEST_F(SpellerTest, APipeInTheFolderIsPassedOver)
{
    dictionaries.folder.Make(u"en_US.aff"_s, "SET UTF-8\n");
    ASSERT_EQ(::mkfifo(dictionaries.folder.Path(u"en_US.dic"_s).toUtf8().constData(), 0600), 0);
    EXPECT_TRUE(InstalledDictionaries(DictionaryFolders()).empty());
}

TEST_F(SpellerTest, RandomDamageHasAClearOutcome)
{
    const std::string affixes = "SET UTF-8\nTRY esi\nREP 2\nREP f ph\nREP ph f\nSFX S Y 2\nSFX S 0 s [^s]\n"
                                "SFX S 0 es s\nPFX U Y 1\nPFX U 0 un .\nCOMPOUNDFLAG C\nCOMPOUNDMIN 2\n";
    const std::string words = "6\nword/SU\nbook/SC\nhouse/SC\nphone/S\npass/S\nway/C\n";
    std::minstd_rand random(1);
    int loaded = 0;
    int refused = 0;
    for (int round = 0; round < 30; ++round) {
        std::string files[] = {affixes, words};
        for (int i = 0; i < 3; ++i) {
            std::string& file = files[random() % 2];
            file[random() % file.size()] = char(random() % 256);
        }
        dictionaries.folder.Make(u"en_US.aff"_s, files[0]);
        dictionaries.folder.Make(u"en_US.dic"_s, files[1]);
        if (const auto speller = load(u"en_US"_s)) {
            ++loaded;
            (void)speller->isRight(u"bookhouse");
        } else {
            ++refused;
            EXPECT_FALSE(problem.isEmpty());
        }
    }
    EXPECT_GT(loaded, 0);
    EXPECT_GT(refused, 0);
}

TEST(Trial, ACrashAnExceptionAndAnEndAreDistinguished)
{
    std::mutex lock;
    EXPECT_TRUE(PassesTrial([] {}, lock));
    EXPECT_FALSE(PassesTrial([] { ::raise(SIGSEGV); }, lock));
    EXPECT_FALSE(PassesTrial([] { throw std::runtime_error("no"); }, lock));
    EXPECT_TRUE(PassesTrial([&] { lock.lock(); }, lock));
}

TEST(Trial, AnAttemptThatALockOfAnotherThreadBlocksIsRepeated)
{
    const Workplace workplace;
    const std::string marker = workplace.Path(u"tried"_s).toStdString();
    std::mutex lock;
    std::mutex foreign;
    const auto blockedOnce = [&](bool crash) {
        if (!std::filesystem::exists(marker)) {
            std::ofstream(marker).put('x');
            foreign.lock();
        }
        if (crash)
            ::raise(SIGSEGV);
    };
    const std::lock_guard held(foreign);
    EXPECT_TRUE(PassesTrial([&] { blockedOnce(false); }, lock));
    std::filesystem::remove(marker);
    EXPECT_FALSE(PassesTrial([&] { blockedOnce(true); }, lock));
}

TEST(Trial, AnAttemptThatIsBlockedEachTimeIsNoFailure)
{
    std::mutex lock;
    std::mutex foreign;
    const std::lock_guard held(foreign);
    EXPECT_TRUE(PassesTrial([&] { foreign.lock(); }, lock));
}

TEST(SpellDictionaryTest, TheNameContainsLanguageAndScript)
{
    const auto named = [](const char16_t* name) {
        return SpellDictionary{QString::fromUtf16(name), {}, {}, true};
    };
    EXPECT_EQ(named(u"ru_RU").language(), u"ru"_s);
    EXPECT_EQ(named(u"ru_RU").script(), QChar::Script_Cyrillic);
    EXPECT_EQ(named(u"uk_UA").script(), QChar::Script_Cyrillic);
    EXPECT_EQ(named(u"fr").script(), QChar::Script_Latin);
    EXPECT_EQ(named(u"de_DE_frami").language(), u"de"_s);
    EXPECT_EQ(named(u"de_DE_frami").script(), QChar::Script_Latin);
    EXPECT_EQ(named(u"el_GR").script(), QChar::Script_Greek);
    EXPECT_EQ(named(u"sr_Latn_RS").script(), QChar::Script_Latin);
    EXPECT_EQ(named(u"sr_RS").script(), QChar::Script_Cyrillic);
    EXPECT_EQ(LanguageOfTag(u" en-GB"_s), u"en"_s);
    EXPECT_EQ(LanguageOfTag(u""_s), QString());
}

TEST(SpellDictionaryTest, TheInstalledDictionariesLoad)
{
    // A user's folder of dictionaries may be in force; the system's own is meant.
    for (const char16_t* name : {u"ru_RU", u"en_US"}) {
        bool found = false;
        for (const SpellDictionary& dictionary : InstalledDictionaries({u"/usr/share/hunspell"_s})) {
            if (dictionary.name != QString::fromUtf16(name))
                continue;
            found = true;
            QString problem;
            EXPECT_TRUE(Speller::Load(dictionary, &problem)) << problem.toStdString();
        }
        if (!found)
            GTEST_SKIP() << "not installed: " << QString::fromUtf16(name).toStdString();
    }
}

} // namespace vmk
