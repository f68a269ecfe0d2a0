#include "SpellCheckF.h"

#include "SmallDictionaries.h"
#include "UndoCommands.h"
#include "WindowTest.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>

#include <gtest/gtest.h>

/// The window of the spell check over the real main window, with keys and mouse.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class SpellCheckFTest : public WindowTest
{
protected:
    SpellCheckFTest() { dictionaries.makeUsual(); }

    void openBook(std::string_view paragraphs, std::string_view language = "en")
    {
        OpenBook("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FictionBook><description><title-info><lang>"
                 + std::string(language) + "</lang></title-info></description><body><section><p>"
                 + std::string(paragraphs) + "</p></section></body></FictionBook>");
        PutCaret(PlaceOf(u"<p>"_s));
    }
    void openForm()
    {
        form->Entry("uSpellCheck")->trigger();
        spell = SpellCheckF::Instance();
        ASSERT_TRUE(spell);
        spell->SuggestionWait = 10s;
        // Its activation sets the area.
        ASSERT_TRUE(WaitFor([this] { return !spell->Check().SearchAreaText.isEmpty(); }));
    }
    void press(QPushButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    void start() { press(spell->StartB); }
    /// Opens a book and the form, and starts at the word "one".
    void startIn(std::string_view paragraphs)
    {
        openBook(paragraphs);
        openForm();
        PutCaret(PlaceOf(u"one"_s));
        start();
    }
    bool waitForSuggestions()
    {
        return WaitFor([this] { return !list().isEmpty(); });
    }
    QStringList list() const
    {
        QStringList lines;
        for (int i = 0; i < spell->lstWords->count(); ++i)
            lines.append(spell->lstWords->item(i)->text());
        return lines;
    }
    std::string customFile()
    {
        QFile file(CustomDictionaryFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(none)";
    }

    const SmallDictionaries dictionaries;
    QPointer<SpellCheckF> spell;
};

} // namespace

TEST_F(SpellCheckFTest, MenuAndToolbarOpenTheOneWindow)
{
    openBook("one");
    EXPECT_TRUE(form->Entry("uSpellCheck")->isEnabled());
    openForm();
    EXPECT_EQ(spell->windowTitle(), u" VMK: Spell Check"_s);
    form->ToolbarAction(u"spell check"_s)->trigger();
    EXPECT_EQ(SpellCheckF::Instance(), spell);
    EXPECT_EQ(spell->StartB->text(), u"start"_s);
    EXPECT_EQ(spell->SelIniB->text(), u"sel ini"_s);
    EXPECT_EQ(spell->Edit->text(), u"edit"_s);
    EXPECT_EQ(spell->lblReplaceWith->text(), u"replace by"_s);
    EXPECT_EQ(spell->lblWord->text(), u"found word"_s);
    spell->close();
    EXPECT_FALSE(SpellCheckF::Instance());
}

TEST_F(SpellCheckFTest, AHitShowsWordSuggestionsAndReport)
{
    startIn("one boook two");
    EXPECT_EQ(spell->txtWord->text(), u"boook"_s);
    EXPECT_EQ(SelectedText(), u"boook"_s);
    EXPECT_EQ(spell->ReportL->text(),
              u"search area: from cursor down\r\nwords found: 1\r\nwords replaced: 0"_s);
    ASSERT_TRUE(waitForSuggestions());
    EXPECT_EQ(list().value(0), u"book"_s);
    EXPECT_EQ(spell->txtReplaceWith->text(), u"book"_s);
    EXPECT_EQ(spell->lstWords->currentRow(), 0);
    EXPECT_EQ(soundNames.count(u"ParseError.wav"_s), 1);
    EXPECT_FALSE(spell->StartB->isEnabled());
}

TEST_F(SpellCheckFTest, ReplaceWaitsForTheSuggestionsAndContinues)
{
    startIn("one boook titlle");
    press(spell->ReplaceB);
    EXPECT_TRUE(WaitFor([this] { return FindLine(u"one book titlle"_s) >= 0; }));
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
    EXPECT_EQ(spell->Check().WordsReplaced, 1);
    EXPECT_FALSE(BookUnchanged);
    UndoEdit();
    EXPECT_GE(FindLine(u"one boook titlle"_s), 0);
}

TEST_F(SpellCheckFTest, AWholeCheckIsPossibleWithKeys)
{
    openBook("one boook titlle слвоо");
    openForm();
    PutCaret(PlaceOf(u"one"_s));
    QTest::keyClick(spell->StartB, Qt::Key_Return);
    EXPECT_EQ(spell->txtWord->text(), u"boook"_s);
    QTest::keyClick(spell->Ignore, Qt::Key_Space);
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
    spell->txtReplaceWith->setFocus();
    QTest::keyClicks(spell->txtReplaceWith, u"more"_s);
    QTest::keyClick(spell->txtReplaceWith, Qt::Key_Return);
    EXPECT_GE(FindLine(u"one boook"_s), 0);
    EXPECT_EQ(spell->txtWord->text(), u"слвоо"_s);
    ASSERT_TRUE(waitForSuggestions());
    QTest::keyClick(spell->lstWords, Qt::Key_Return);
    EXPECT_GE(FindLine(u" слово"_s), 0);
    EXPECT_EQ(FindLine(u"слвоо"_s), -1);
    QTest::keyClick(spell, Qt::Key_Escape);
    EXPECT_FALSE(SpellCheckF::Instance());
}

TEST_F(SpellCheckFTest, WhatTheUserTypesIsNotOverwrittenBySuggestions)
{
    startIn("one boook two");
    spell->txtReplaceWith->setFocus();
    spell->txtReplaceWith->selectAll();
    QTest::keyClicks(spell->txtReplaceWith, u"mine"_s);
    ASSERT_TRUE(waitForSuggestions());
    EXPECT_EQ(spell->txtReplaceWith->text(), u"mine"_s);
}

TEST_F(SpellCheckFTest, AClickTakesASuggestionAndADoubleClickReplaces)
{
    startIn("one boook two");
    ASSERT_TRUE(waitForSuggestions());
    spell->txtReplaceWith->clear();
    const QPoint place = spell->lstWords->visualItemRect(spell->lstWords->item(0)).center();
    QTest::mouseClick(spell->lstWords->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(spell->txtReplaceWith->text(), u"book"_s);
    EXPECT_GE(FindLine(u"boook"_s), 0);
    QTest::mouseDClick(spell->lstWords->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_GE(FindLine(u"one book two"_s), 0);
}

TEST_F(SpellCheckFTest, AWordWithoutSuggestionsSaysSo)
{
    startIn("one qqxxzz two");
    ASSERT_TRUE(waitForSuggestions());
    EXPECT_EQ(list(), QStringList({u"no suggestions"_s}));
    EXPECT_TRUE(spell->txtReplaceWith->text().isEmpty());
}

TEST_F(SpellCheckFTest, ReplaceDoesNotDeleteAWordWhoseSuggestionsAreLate)
{
    openBook("one boook titlle");
    openForm();
    spell->SuggestionWait = 0s;
    PutCaret(PlaceOf(u"one"_s));
    start();
    press(spell->ReplaceB);
    EXPECT_GE(FindLine(u"one book titlle"_s), 0);
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
}

TEST_F(SpellCheckFTest, ReplaceDeletesAWordWithoutSuggestions)
{
    startIn("one qqxxzz two");
    ASSERT_TRUE(waitForSuggestions());
    press(spell->ReplaceB);
    EXPECT_EQ(FindLine(u"qqxxzz"_s), -1);
    EXPECT_EQ(spell->Check().WordsReplaced, 1);
}

TEST_F(SpellCheckFTest, ATooSlowSearchForSuggestionsDoesNotDelayTheReplacement)
{
    openBook("one boook titlle");
    openForm();
    spell->SuggestionWait = 0s;
    PutCaret(PlaceOf(u"one"_s));
    start();
    spell->txtReplaceWith->selectAll();
    QTest::keyClicks(spell->txtReplaceWith, u"mine"_s);
    press(spell->ReplaceB);
    EXPECT_GE(FindLine(u"one mine titlle"_s), 0);
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
}

TEST_F(SpellCheckFTest, AnActivationResetsTheAreaUnlessSkipped)
{
    startIn("one boook two");
    QEvent activation(QEvent::WindowActivate);
    press(spell->Edit);
    QCoreApplication::sendEvent(spell, &activation);
    EXPECT_EQ(spell->txtWord->text(), u"boook"_s);
    EXPECT_TRUE(spell->StartB->isEnabled());
    QCoreApplication::sendEvent(spell, &activation);
    EXPECT_TRUE(spell->txtWord->text().isEmpty());
    EXPECT_EQ(spell->Check().SearchAreaText, u"search area: selected text"_s);
}

TEST_F(SpellCheckFTest, SelIniGrowsTheSelectionToWords)
{
    openBook("one boook two");
    openForm();
    const Position at = PlaceOf(u"boook"_s);
    Document().setSelection({at.line, at.offset + 2}, {at.line, at.offset + 7});
    press(spell->SelIniB);
    EXPECT_EQ(SelectedText(), u"boook two"_s);
}

TEST_F(SpellCheckFTest, TheDictionaryModeListsRemovesAndWrites)
{
    openBook("one boook two");
    workplace.Make(u"VMK Office/CustomDictionary.dat"_s, "aaa\r\nbbb\r\nccc\r\n");
    openForm();
    press(spell->Edit);
    EXPECT_EQ(spell->windowTitle(), u" Edit Custom Dictionary"_s);
    EXPECT_FALSE(spell->StartB->isEnabled());
    EXPECT_FALSE(spell->ReplaceB->isVisible());
    EXPECT_FALSE(spell->lstWords->isVisible());
    EXPECT_TRUE(spell->CustWords->isVisible());
    ASSERT_EQ(spell->CustWords->count(), 3);
    press(spell->remove);
    EXPECT_EQ(spell->CustWords->count(), 3);
    spell->CustWords->item(1)->setSelected(true);
    press(spell->remove);
    EXPECT_EQ(spell->Check().Custom.CustomWords, QStringList({u"aaa"_s, u"ccc"_s}));
    EXPECT_EQ(spell->Check().Custom.CustomWordCount, 3);
    EXPECT_EQ(customFile(), "aaa\r\nbbb\r\nccc\r\n");
    press(spell->Done);
    EXPECT_EQ(customFile(), "aaa\r\nccc\r\n");
    EXPECT_EQ(spell->windowTitle(), u" VMK: Spell Check"_s);
    EXPECT_TRUE(spell->ReplaceB->isVisible());
    EXPECT_FALSE(spell->remove->isVisible());
    EXPECT_TRUE(spell->StartB->isEnabled());
}

TEST_F(SpellCheckFTest, CancellingTheDictionaryModeWritesNothing)
{
    openBook("one aaa two");
    workplace.Make(u"VMK Office/CustomDictionary.dat"_s, "aaa\r\n");
    openForm();
    press(spell->Edit);
    spell->CustWords->selectAll();
    press(spell->remove);
    EXPECT_EQ(spell->CustWords->count(), 0);
    press(spell->Cancel1);
    EXPECT_EQ(customFile(), "aaa\r\n");
    // In memory it is gone for this run.
    PutCaret(PlaceOf(u"one"_s));
    start();
    EXPECT_EQ(spell->txtWord->text(), u"aaa"_s);
}

TEST_F(SpellCheckFTest, AddStoresTheFoundWord)
{
    startIn("one boook titlle");
    press(spell->Add);
    EXPECT_EQ(customFile(), "boook\r\n");
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
}

TEST_F(SpellCheckFTest, ClosingInTheMiddleKeepsTheReplacements)
{
    startIn("one boook titlle");
    press(spell->ReplaceB);
    EXPECT_EQ(spell->txtWord->text(), u"titlle"_s);
    QTest::keyClick(spell->txtWord, Qt::Key_Escape);
    EXPECT_FALSE(SpellCheckF::Instance());
    EXPECT_GE(FindLine(u"one book titlle"_s), 0);
    EXPECT_FALSE(BookUnchanged);
    UndoEdit();
    EXPECT_GE(FindLine(u"one boook titlle"_s), 0);
}

TEST_F(SpellCheckFTest, TheWindowMovesOffTheHit)
{
    openBook("one boook titlle");
    openForm();
    PutCaret(PlaceOf(u"one"_s));
    const TextRange line = page::createRange(Document());
    const QPoint text = View().viewport()->mapToGlobal(QPoint(line.boundingLeft(), line.offsetTop()));
    spell->move(text - QPoint(40, 20));
    start();
    EXPECT_EQ(SelectedText(), u"boook"_s);
    const TextRange hit = page::createRange(Document());
    const QRect shown(View().viewport()->mapToGlobal(QPoint(hit.boundingLeft(), hit.offsetTop())),
                      QSize(hit.boundingWidth(), hit.boundingHeight()));
    EXPECT_FALSE(spell->frameGeometry().intersects(shown));
}

TEST_F(SpellCheckFTest, CancelReportsAndClosingEmptiesTheSelection)
{
    startIn("one boook titlle");
    press(spell->Help);
    press(spell->ReplaceB);
    press(spell->Cancel);
    EXPECT_TRUE(spell->ReportL->text().startsWith(
        u"Spell Check has been finished\r\nsearch area: from cursor down"_s));
    EXPECT_TRUE(spell->StartB->isEnabled());
    EXPECT_TRUE(spell->txtWord->text().isEmpty());
    EXPECT_EQ(beepCount, 1);
    EXPECT_EQ(SelectedText(), u"titlle"_s);
    spell->close();
    EXPECT_TRUE(SelectedText().isEmpty());
    EXPECT_GE(FindLine(u"one book titlle"_s), 0);
}

TEST_F(SpellCheckFTest, ReplaceWithoutAHitLeavesTheBookAlone)
{
    openBook("one two");
    openForm();
    const QString before = page::innerText(Document());
    press(spell->ReplaceB);
    EXPECT_EQ(page::innerText(Document()), before);
}

TEST_F(SpellCheckFTest, AnotherBookEndsTheCheck)
{
    startIn("one boook two");
    LoadAndWait(MakeBook(SmallBook, u"other.fb2"_s));
    EXPECT_TRUE(spell->txtWord->text().isEmpty());
    const QString before = page::innerText(Document());
    press(spell->ReplaceB);
    press(spell->Ignore);
    EXPECT_EQ(page::innerText(Document()), before);
}

TEST_F(SpellCheckFTest, WithoutADictionaryABoxSaysSoAndTheWindowCloses)
{
    openBook("one two");
    for (const char16_t* name : {u"ru_RU.dic", u"en_US.dic", u"de_DE.dic"})
        QFile::remove(dictionaries.folder.Path(QString::fromUtf16(name)));
    openForm();
    start();
    EXPECT_EQ(boxTexts, QStringList({u"cannot find Word dictionary"_s}));
    EXPECT_FALSE(SpellCheckF::Instance());
}

TEST_F(SpellCheckFTest, TheMainWindowsCloseClosesIt)
{
    startIn("one boook");
    form->close();
    EXPECT_FALSE(SpellCheckF::Instance());
}

} // namespace vmk
