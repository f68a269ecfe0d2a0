#include "BinaryListF.h"
#include "CleanUpF.h"
#include "CleanUpTable.h"
#include "EditHtmlWbF.h"
#include "FbFunctions.h"
#include "FbTagListF.h"
#include "FindReplaceWbF.h"
#include "ImageViewerF.h"
#include "InLineTagsF.h"
#include "Monkey.h"
#include "SaveBook.h"
#include "SearchField.h"
#include "SettingsVariables.h"
#include "SpecialCharactersF.h"
#include "SpecialSymbols.h"
#include "SpellCheckF.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

/// What the monkey does in the windows of the tools, and with files.
namespace vmk {

using namespace Qt::StringLiterals;
using test::LineBreak;
using test::Place;
using test::With;

namespace {

void Press(QAbstractButton* button)
{
    // The middle of a check box is not part of it.
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, {8, button->height() / 2});
}

/// Sets a check box by a click.
void Check(QAbstractButton* box, bool on)
{
    if (box->isChecked() != on)
        Press(box);
    EXPECT_EQ(box->isChecked(), on) << box->objectName().toStdString();
}

void EventsOf(QWidget& window)
{
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&window] { return window.isActiveWindow(); }, 10'000));
}

void Close(QWidget* window)
{
    if (window != nullptr)
        window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ClickRow(QListWidget& list, int row)
{
    list.scrollToItem(list.item(row));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier,
                      list.visualItemRect(list.item(row)).center());
}

} // namespace

void Monkey::AddTools()
{
    AddFinding();
    AddCleaning();
    AddInsertions();
    AddSpelling();
    AddImages();
    AddFiles();
}

// ---------------------------------------------------------------- find and replace

void Monkey::AddFinding()
{
    const auto open = [this]() -> FindReplaceWbF& {
        form->Entry("uFindReplace")->trigger();
        EventsOf(*FindReplaceWbF::Instance());
        return *FindReplaceWbF::Instance();
    };
    AddQuiet("find", 4, [this, open] {
        FindReplaceWbF& window = open();
        const bool byRegExp = Below(3) == 0;
        Check(window.RegExpB, byRegExp);
        static const QStringList patterns{u"<[^>]+>"_s, u"\\b\\w{3,5}\\b"_s, u"(a|e)."_s, u"[.,;]\\s"_s};
        window.FindCB->Fill(byRegExp ? OneOf(patterns) : AnyLetters(3, false));
        Check(window.MatchCaseB, Below(2) == 0);
        if (!byRegExp)
            Press(Below(2) == 0 ? window.UpB : window.DownB);
        for (int i = Below(3); i >= 0; --i)
            Press(window.FindB);
        Close(&window);
    });
    Add("replace a match", 2, [this, open](const Place& place) {
        FindReplaceWbF& window = open();
        Check(window.RegExpB, false);
        Check(window.MatchCaseB, true);
        Check(window.AutoFindNextB, false);
        window.FindCB->Fill(AnyLetters(3, false));
        window.ReplaceCB->Fill(u"Qq"_s);
        Press(window.FindB);
        QString expected = test::Unchanged(place);
        if (window.ReplaceB->isEnabled()) {
            expected = With(CurrentPlace(), u"Qq"_s);
            Press(window.ReplaceB);
        }
        Close(&window);
        return Outcome{expected};
    });
    Add("replace all", 1, [this, open](const Place& place) {
        Document().setSelection({}, {});
        FindReplaceWbF& window = open();
        Check(window.RegExpB, false);
        Check(window.MatchCaseB, true);
        Check(window.WholeWordB, false);
        Check(window.SelectionB, false);
        Check(window.MarkReplacedB, Below(4) == 0);
        Press(window.DownB);
        const QString letters = AnyLetters(4, false);
        window.FindCB->Fill(letters);
        window.ReplaceCB->Fill(u"Wxyz"_s);
        Press(window.UpdateB);
        Press(window.ReplaceAllB);
        Close(&window);
        QString expected = test::Unchanged(place);
        return Outcome{letters.isEmpty() ? expected : expected.replace(letters, u"Wxyz"_s)};
    });
}

// ---------------------------------------------------------------- the cleaner

void Monkey::AddCleaning()
{
    Add("clean up", 1, [this](const Place& place) {
        const QString letters = AnyLetters(4, true);
        const QString table = UserCleanUpFolder + u"/monkey.dat"_s;
        std::vector<CleanUpRow> rows;
        if (!letters.isEmpty())
            rows.push_back({letters, u"Kuvw"_s, true, false, true});
        rows.push_back({u"no such text"_s, u"x"_s, false, true, true});
        EXPECT_TRUE(WriteFileText(table, CleanUpFileBytes({u"whole book"_s, rows})));
        form->Entry("uBookCleaner")->trigger();
        CleanUpF& cleaner = *CleanUpF::Instance();
        dialogAnswer = table;
        Press(cleaner.LoadB);
        dialogAnswer.clear();
        const bool isBare = IsBare();
        // A selection would be the scope.
        cleaner.CleanWhere->setCurrentText(u"whole book"_s);
        Press(cleaner.ApplyB);
        Close(&cleaner);
        QString expected = test::Unchanged(place);
        if (!letters.isEmpty())
            expected.replace(letters, u"Kuvw"_s);
        // Painting may end a comment, and reads lines that are no lines of a book as it can.
        const bool isKnown = !isBare && !expected.contains("<!--"_L1);
        return Outcome{expected, isKnown ? Outcome::ButForBlanks : Outcome::Anything};
    });
}

// ---------------------------------------------------------------- tags, symbols, fragments

void Monkey::AddInsertions()
{
    Add("tag list", 3, [this](const Place&) {
        form->RunCommand(Command::InsertTags);
        auto& window = InstanceOf<FbTagListF>();
        EventsOf(window);
        Check(window.CloseTagsB, Below(2) == 0);
        if (window.TagListL->count() > 0)
            ClickRow(*window.TagListL, Below(window.TagListL->count()));
        Press(window.InsertB);
        Close(&window);
        return Outcome{{}, Outcome::Anything};
    });
    AddQuiet("in-line tags", 1, [this] {
        form->RunCommand(Command::InLineTags);
        auto& window = InstanceOf<InLineTagsF>();
        EventsOf(window);
        Press(window.AddB);
        QTest::keyClicks(window.AddTextT, u"code"_s);
        Close(&window);
    });
    Add("special symbol", 3, [this](const Place& place) {
        form->RunCommand(Command::InsertSpecialSymbols);
        auto& window = InstanceOf<SpecialCharactersF>();
        EventsOf(window);
        const QList<QPushButton*> buttons = window.findChildren<QPushButton*>();
        window.AsciiCodeT->setText(u"1078 8212 65"_s);
        QPushButton* button = OneOf(buttons);
        Press(button);
        Close(&window);
        // A non-breaking space replaces the selection, as by its key.
        const bool replaces = button->objectName() == u"Nbsp"_s;
        return replaces ? Outcome{With(place, {}), Outcome::ButForBlanks} : Outcome{{}, Outcome::Around};
    });
    Add("fragment editor", 2, [this](const Place&) {
        form->RunCommand(Command::HtmlFragmentEditor);
        auto& window = InstanceOf<EditHtmlWbF>();
        EventsOf(window);
        Press(window.RefreshB);
        Press(window.ColorB);
        if (Below(2) == 0)
            QTest::keyClicks(window.HtmlEditor, u"typed"_s);
        if (Below(3) != 0)
            Press(window.ApplyB);
        Close(&window);
        return Outcome{{}, Outcome::Anything};
    });
}

// ---------------------------------------------------------------- the spell check

void Monkey::AddSpelling()
{
    Add("spell check", 2, [this](const Place& place) {
        form->Entry("uSpellCheck")->trigger();
        SpellCheckF* window = SpellCheckF::Instance();
        EventsOf(*window);
        QString expected = test::Unchanged(place);
        Press(window->StartB);
        for (int i = Below(4); i > 0 && SpellCheckF::Instance(); --i) {
            const Place hit = CurrentPlace();
            const QString word = window->txtWord->text();
            if (word.isEmpty())
                break;
            if (Below(3) == 0 && hit.selected == word) {
                window->txtReplaceWith->clear();
                QTest::keyClicks(window->txtReplaceWith, u"word"_s);
                expected = With(hit, u"word"_s);
                Press(window->ReplaceB);
            } else {
                Press(Below(4) == 0 ? window->Add : window->Ignore);
            }
        }
        Close(SpellCheckF::Instance());
        return Outcome{expected};
    });
}

// ---------------------------------------------------------------- pictures

void Monkey::AddImages()
{
    AddQuiet("binary list", 2, [this] {
        form->RunCommand(Command::ShowBinaryList);
        auto& list = InstanceOf<BinaryListF>();
        if (!list.isVisible())
            return;
        ClickRow(*list.TagListF, Below(list.TagListF->count()));
        auto& viewer = InstanceOf<ImageViewerF>();
        viewer.resize(300 + Below(300), 200 + Below(300));
        QCoreApplication::processEvents();
        Close(&viewer);
        Close(&list);
    });
    AddQuiet("extract images", 1, [this] {
        form->RunCommand(Command::ExtractAllImages);
        form->RunCommand(Command::DeleteExtractedImages);
    });
    AddQuiet("image of a tag", 2, [this] {
        const int line = FindLine(u"<image"_s);
        if (line >= 0)
            PutCaret({line, int(LineText(line).indexOf(u"<image"_s)) + 3});
        form->ShowPopUpMenu();
        form->MnRightClick->close();
        dialogAnswer = picture;
        form->RunCommand(
            OneOf(std::array{Command::ShowImage, Command::RemoveImageResource, Command::AddImageResource}));
        dialogAnswer.clear();
        Close(&InstanceOf<ImageViewerF>());
    });
}

// ---------------------------------------------------------------- files and the mouse

void Monkey::AddFiles()
{
    QWidget* page = View().viewport();
    AddQuiet("drag", 8, [=, this] {
        const QPoint from = AnyPoint();
        QTest::mousePress(page, Qt::LeftButton, {}, from);
        QPoint to = from;
        for (int i = Below(4); i >= 0; --i)
            QTest::mouseMove(page, to = AnyPoint());
        QTest::mouseRelease(page, Qt::LeftButton, {}, to);
    });
    AddQuiet("wheel", 4, [this] { View().scrollBy(0, Below(2000) - 1000); });
    Add("preview, schemas, settings", 1, [this](const Place& place) {
        form->RunCommand(OneOf(std::array{Command::ReadInHaaliReader, Command::ShowSchema, Command::Settings,
                                          Command::Toolbar, Command::About}));
        QCoreApplication::processEvents();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window != form.get())
                window->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return Outcome{test::Unchanged(place)};
    });
    Add("save and reload", 1, [this](const Place&) {
        CheckFile();
        CheckUndoOfAll();
        soundNames.clear();
        form->RunCommand(Command::SaveAndReload);
        EXPECT_TRUE(WaitFor([this] { return View().isEditable(); }));
        OutputEncoding = u"utf-8"_s;
        NoteBook();
        return Outcome{{}, Outcome::Anything};
    });
}

} // namespace vmk
