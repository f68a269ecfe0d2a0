#include "FbFunctions.h"
#include "Monkey.h"
#include "SessionRecorder.h"
#include "SmallDictionaries.h"
#include "UnsavedText.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

/// The monkey on books that are being loaded: it works with the first lines while the others follow, and
/// saves the book, undoes everything, loads another book or closes the window at any moment. The known text
/// is always the whole text, so that a command that saw a part of a book would be noticed.
///
/// `VMK_LOADING_BOOKS` in the environment is the number of books of a longer run, `VMK_MONKEY_SEED` its seed.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using test::LineBreak;
using test::Place;

/// Holds the timers of a view, so that a book is loaded only when the test lets it.
class TimersHeld final : public QObject
{
public:
    explicit TimersHeld(DisplayView& heldView)
        : view(heldView)
    {
        qApp->installEventFilter(this);
    }

    /// Processes events once, with the timers of the view.
    void letThrough()
    {
        isOpen = true;
        QCoreApplication::processEvents();
        isOpen = false;
    }
    bool isOpen = false;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        return !isOpen && watched == &view && event->type() == QEvent::Timer;
    }

private:
    DisplayView& view;
};

std::string LargeBook(const std::string& word)
{
    constexpr int Paragraphs = 9'000;
    std::string text = R"(<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0" xmlns:l="http://www.w3.org/1999/xlink"><description>
<title-info><book-title>T</book-title></title-info><document-info><program-used>Vellumark</program-used>
</document-info></description><body><section>)";
    for (int i = 0; i < Paragraphs; ++i)
        text += "<p>" + word + " line " + std::to_string(i) + (i % 7 == 0 ? " <strong>here</strong>" : "")
            + "</p>\n";
    return text + "</section></body></FictionBook>";
}

class MonkeyLoading : public Monkey
{
protected:
    void SetUp() override
    {
        dictionaries.makeUsual();
        SetUpAllWindows(LargeBook("first"));
        largeEvery = 20;
        pageEvery = 1'000'000;
        books = {book, LargeBook("second")};
        for (const std::string& text : books) {
            LoadAndWait(MakeBook(text));
            wholeTexts.push_back(test::TextLines(Document()));
            pages.push_back(Document().savePage());
        }
        timers = std::make_unique<TimersHeld>(View());
    }

    /// Loads a book; returns when its first lines can be edited.
    void LoadFirstLines(int number)
    {
        // A file of its own: the one before may have been saved.
        const QString path = MakeBook(books[size_t(number % 2)], u"book%1.fb2"_s.arg(number));
        const QString old = View().location();
        timers->isOpen = true; // for the timers of the old page
        ASSERT_TRUE(LoadBook(path, false));
        timers->isOpen = false;
        ASSERT_TRUE(WaitFor([&] { return View().location() != old && View().isEditable(); }));
        View().setFocus();
        OutputEncoding = u"utf-8"_s;
        whole = wholeTexts[size_t(number % 2)];
        known = whole;
        first = pages[size_t(number % 2)];
        copied.clear();
        seen.clear();
        NoteText();
        ASSERT_FALSE(Document().isComplete());
        ++loads;
    }

    /// After a command that has loaded the book again.
    void NoteBook() override
    {
        Monkey::NoteBook();
        known = whole = test::TextLines(Document());
    }

    Place CurrentPlace() override
    {
        return test::PlaceIn(AllText().split(LineBreak), Document().selection());
    }

    /// The lines that are loaded, and those that are not.
    QString AllText() override
    {
        QStringList lines;
        for (int i = 0; i < Document().loadedLineCount(); ++i)
            lines.append(Document().line(i).text);
        if (!Document().isComplete())
            lines += whole.mid(linesRead);
        return lines.join(LineBreak);
    }

    /// Often at the end of what is loaded.
    Position AnyPlace() override
    {
        constexpr int LastLines = 3;
        const int loaded = Document().loadedLineCount();
        const int line = Below(4) == 0 ? loaded - 1 - Below(std::min(LastLines, loaded)) : Below(loaded);
        return {line, Below(LineText(line).size() + 1)};
    }

    void LoadingStep()
    {
        // Some of the next lines, as the timer loads them, or as many as it loads in one slice.
        if (Below(5) == 0)
            Document().loadMore();
        else if (Below(15) == 0)
            timers->letThrough();
        // Of the lines that are loaded, the known text has as many more as the edits have added.
        linesRead = Document().loadedLineCount() - (known.size() - whole.size());
        ASSERT_EQ(AllText(), known.join(LineBreak));
        duringLoad += Document().isComplete() ? 0 : 1;
        Step();
        known = AllText().split(LineBreak);
    }

    // ---- the end of a book

    void SaveAndCheck()
    {
        ASSERT_TRUE(form->RunCommand(Command::SaveFile));
        CheckText(CurrentBook, known.join(LineBreak), StateOfBook());
        CheckFile();
        CheckJournal();
    }
    void CompleteAndCheck()
    {
        timers->isOpen = true;
        EXPECT_TRUE(WaitFor([this] { return Document().isComplete(); }));
        timers->isOpen = false;
        CheckUndoOfAll();
        CheckJournal();
    }
    void UndoAndCheck()
    {
        while (Document().undo()) {
            if (Below(10) == 0)
                timers->letThrough();
        }
        EXPECT_TRUE(test::TextLines(Document()) == whole);
        EXPECT_TRUE(Document().savePage() == first);
        CheckJournal();
    }

    QStringList KeptBooks() const
    {
        return QDir(RecoveryFolder()).entryList({u"*(unsaved *.fb2"_s}, QDir::Files);
    }
    /// Runs what ends the book; its text is then in its file, or kept as a whole book.
    void EndAndCheck(const std::function<void()>& end)
    {
        const QString text = known.join(LineBreak);
        const QString path = CurrentBook;
        const BookState state = StateOfBook();
        const bool isBlank = IsDisplayBlank();
        const QStringList before = KeptBooks();
        end();
        if (isBlank)
            return;
        QString file = path;
        for (const QString& name : KeptBooks()) {
            if (!before.contains(name))
                file = RecoveryFolder() + u'/' + name;
        }
        kept += file == path ? 0 : 1;
        CheckText(file, text, state);
    }

    const SmallDictionaries dictionaries;
    std::vector<std::string> books;
    std::vector<QStringList> wholeTexts;
    std::vector<QByteArray> pages;
    QStringList whole; ///< the lines of the open book as loaded
    QStringList known; ///< its lines after the edits
    qsizetype linesRead = 0; ///< the lines of the open book that are loaded
    std::unique_ptr<TimersHeld> timers;
    int loads = 0;
    int duringLoad = 0; ///< steps
    int endedDuringLoad = 0;
    int kept = 0;
};

TEST_F(MonkeyLoading, WorkWhileABookIsLoadedKeepsTheWholeBook)
{
    constexpr int MostSteps = 16;
    random.seed(unsigned(FromEnvironment("VMK_MONKEY_SEED", 1)));
    const int count = FromEnvironment("VMK_LOADING_BOOKS", 24);
    LoadFirstLines(0);
    for (int number = 1; number <= count && !HasFailure(); ++number) {
        SCOPED_TRACE(testing::Message() << "book " << number);
        for (int step = 1 + Below(MostSteps); step > 0 && !HasFailure(); --step) {
            LoadingStep();
            if (Document().isComplete() && Below(3) == 0)
                break;
        }
        if (HasFailure())
            break;
        endedDuringLoad += Document().isComplete() ? 0 : 1;
        switch (Below(6)) {
        case 0:
            SaveAndCheck();
            break;
        case 1:
            CompleteAndCheck();
            break;
        case 2:
            UndoAndCheck();
            break;
        default:
            break;
        }
        known = AllText().split(LineBreak);
        if (number < count)
            EndAndCheck([&] { LoadFirstLines(number); });
    }
    if (!HasFailure()) {
        EndAndCheck([this] {
            timers->isOpen = true;
            EXPECT_TRUE(form->close());
        });
    }
    std::printf("%d books, %d steps and %d ends of them while loading, %d books kept unsaved\n", loads,
                duringLoad, endedDuringLoad, kept);
    EXPECT_GT(duringLoad, count);
    EXPECT_GT(endedDuringLoad, count / 8);
    EXPECT_GT(kept, count / 8);
}

} // namespace
} // namespace vmk
