#include "WindowTest.h"

#include "BookToDisplay.h"
#include "BookVariables.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "MainWindowSeams.h"
#include "SaveBook.h"
#include "ScrollPositions.h"

#include <QDir>

/// A large book in the window: its first lines are shown and can be edited while the rest is loaded.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int Paragraphs = 60'000;

std::string LargeBook(const std::string& word, int paragraphs = Paragraphs)
{
    std::string book = R"(<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><description><title-info>
<book-title>T</book-title></title-info><document-info><program-used>Vellumark</program-used></document-info>
</description><body><section>)";
    for (int i = 0; i < paragraphs; ++i)
        book += "<p>" + word + " " + std::to_string(i) + "</p>\n";
    return book + "</section></body></FictionBook>";
}

class LoadingWindow : public WindowTest
{
protected:
    /// Loads a book; returns when its first lines are shown.
    void loadFirstLines(const QString& path)
    {
        const QString old = View().location();
        ASSERT_TRUE(LoadBook(path, false));
        ASSERT_TRUE(WaitFor([&] { return View().location() != old && View().designMode() == u"On"; }));
    }
    static std::string savedText(const QString& path) { return ReadFileText(path); }
};

TEST_F(LoadingWindow, WhatIsTypedIntoTheFirstLinesIsSavedWithTheWholeBook)
{
    Open();
    const QString path = MakeBook(LargeBook("word"));
    loadFirstLines(path);
    for (int i = 0; i < Document().loadedLineCount(); ++i) {
        const qsizetype at = LineText(i).indexOf(u"word 3<"_s);
        if (at >= 0)
            PutCaret({i, int(at)});
    }
    Type(u"typed "_s);
    EXPECT_TRUE(form->RunCommand(Command::SaveFile));
    const std::string saved = savedText(path);
    EXPECT_NE(saved.find("<p>typed word 3</p>"), std::string::npos);
    EXPECT_NE(saved.find("<p>word 59999</p>"), std::string::npos);
    EXPECT_EQ(std::size_t(Paragraphs), [&saved] {
        std::size_t count = 0;
        for (std::size_t at = saved.find("<p>"); at != std::string::npos; at = saved.find("<p>", at + 1))
            ++count;
        return count;
    }());
}

TEST_F(LoadingWindow, TheRestIsLoadedInTheBackgroundAndThePageFileIsTheWholePage)
{
    Open();
    const std::string book = LargeBook("word");
    loadFirstLines(MakeBook(book));
    ASSERT_TRUE(WaitFor([this] { return Document().isComplete(); }));
    EXPECT_EQ(LineText(Document().lineCount() - 1), u"</FictionBook>"_s);
    std::string page = book;
    ASSERT_TRUE(ConvertBookToDisplay(page, false));
    EXPECT_TRUE(WaitFor([&page] { return savedText(DisplayFile).size() == page.size(); }));
    EXPECT_EQ(savedText(DisplayFile), page);
}

TEST_F(LoadingWindow, AnotherBookReplacesOneThatIsBeingLoaded)
{
    Open();
    const QString first = MakeBook(LargeBook("first"), u"first.fb2"_s);
    const QString second = MakeBook(LargeBook("second"), u"second.fb2"_s);
    for (int i = 0; i < 3; ++i) {
        loadFirstLines(first);
        loadFirstLines(second);
    }
    EXPECT_EQ(FindLine(u"first"_s), -1);
    EXPECT_GE(FindLine(u"second 59999"_s), 0);
    EXPECT_EQ(CurrentBook, second);
}

TEST_F(LoadingWindow, UnsavedTextOfABookThatIsBeingLoadedIsKeptAsAWholeBook)
{
    Open();
    const QString first = MakeBook(LargeBook("first"), u"first.fb2"_s);
    const QString second = MakeBook(LargeBook("second"), u"second.fb2"_s);
    loadFirstLines(first);
    PutCaret({8, 0});
    Type(u"unsaved"_s);
    loadFirstLines(second);
    const QDir folder(workplace.Path(u"VMK Office/Recovery"_s));
    const QStringList kept = folder.entryList({u"first (unsaved *.fb2"_s});
    ASSERT_EQ(kept.size(), 1);
    const std::string text = savedText(folder.filePath(kept.first()));
    EXPECT_NE(text.find("unsaved"), std::string::npos);
    EXPECT_NE(text.find("first 59999"), std::string::npos);
}

TEST_F(LoadingWindow, CommandsSeeTheWholeBook)
{
    Open();
    loadFirstLines(MakeBook(LargeBook("word")));
    EXPECT_GE(FindLine(u"word 59999"_s), 0);

    loadFirstLines(MakeBook(LargeBook("other"), u"other.fb2"_s));
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(LineText(Document().selection().focus.line), u"</FictionBook>"_s);

    loadFirstLines(MakeBook(LargeBook("third"), u"third.fb2"_s));
    ValidateDisplay();
    EXPECT_TRUE(Message().startsWith(u"Error against"_s) || Message().startsWith(u"No errors"_s));
    EXPECT_TRUE(Document().isComplete());
}

TEST_F(LoadingWindow, TheMarkerOfAResizeLoadsNothing)
{
    Open();
    // So many lines that most of them are not loaded yet when the page becomes editable.
    loadFirstLines(MakeBook(LargeBook("word", 15 * Paragraphs)));
    ASSERT_FALSE(Document().isComplete());
    View().scroll(0, 500);
    for (int i = 0; i < 2; ++i) {
        SetTemporalBookmark();
        RestoreTemporalBookmark();
    }
    EXPECT_FALSE(Document().isComplete());
    EXPECT_TRUE(Document().canUndo());
    EXPECT_TRUE(page::getElementsByName(Document(), u"()*^^^%^*"_s).empty());
}

TEST_F(LoadingWindow, TheWindowClosesWhileABookIsBeingLoaded)
{
    Open();
    loadFirstLines(MakeBook(LargeBook("word")));
    EXPECT_TRUE(form->close());
    EXPECT_EQ(endCount, 1);
    EXPECT_FALSE(FileExists(DisplayFile));
}

} // namespace
} // namespace vmk
