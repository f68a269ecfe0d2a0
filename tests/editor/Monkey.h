#pragma once

#include "CommandModel.h"
#include "SettingsVariables.h"
#include "WindowTest.h"

#include <QSet>

#include <array>
#include <functional>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

/// Random keys, clicks and commands on a book in the real window. After each of them the text of the page
/// equals the result of a plain model of the command, and a saved and reloaded page has the same text;
/// sometimes the saved file is compared with the page.
namespace vmk {

/// The expected text after an action.
struct Outcome
{
    enum Known
    {
        Exactly,
        ButForBlanks, ///< When lines are merged, HTML decides which blanks are kept.
        FromBefore, ///< An earlier text of the page.
        Around, ///< The text before, with anything inserted beside the selection; but for blanks.
        Anything, ///< No model; the page and the journal are compared.
    };

    QString text;
    Known known = Exactly;
};

/// A number in the environment, or a standard value.
[[nodiscard]] int FromEnvironment(const char* name, int standard);

class Monkey : public WindowTest
{
protected:
    /// Runs a random action and returns the expected result.
    using Action = std::function<Outcome(const test::Place&)>;

    void SetUp() override;

    static std::string Book();

    void AddTyping();
    void AddMoves();
    void AddPastes();
    void AddCommands();
    /// Actions in the windows of the tools.
    void AddTools();
    void AddFinding();
    void AddCleaning();
    void AddInsertions();
    void AddSpelling();
    void AddImages();
    /// Drags, and commands that save and load the book.
    void AddFiles();

    /// Opens a book and adds the actions of all windows, for long runs.
    void SetUpAllWindows(std::string openedBook);

    /// Runs and checks one action.
    void Step();
    void CheckPage();
    void CheckFile();
    void CheckReload(std::string savedBook);
    /// What a save adds to the text, and how it does.
    struct BookState
    {
        QString pictures;
        bool keepsText = false;
    };
    static BookState StateOfBook();
    /// The file contains the text of a page as a save writes it.
    void CheckText(const QString& path, QString text, const BookState& state);
    /// The journal of the session recovers the page.
    void CheckJournal();
    void Undo();
    /// Undoes everything to the page that was loaded, and redoes it.
    void CheckUndoOfAll();
    /// Notes the page of a book that was loaded.
    virtual void NoteBook();
    /// Keeps the page small, but not empty.
    void KeepSize();

    // ---- actions

    void Add(const char* name, int weight, Action action)
    {
        names.push_back(name);
        weights.push_back(weight);
        actions.push_back(std::move(action));
        runs.push_back(0);
    }
    /// An action that does not change the text.
    void AddQuiet(const char* name, int weight, std::function<void()> run)
    {
        Add(name, weight, [run = std::move(run)](const test::Place& place) {
            run();
            return Outcome{test::Unchanged(place)};
        });
    }
    /// A key or a command with a known resulting text.
    void AddEdit(const char* name, int weight, std::function<void()> run,
                 std::function<QString(const test::Place&)> expected)
    {
        Add(name, weight, [run = std::move(run), expected = std::move(expected)](const test::Place& place) {
            run();
            return Outcome{expected(place)};
        });
    }
    /// One of two undo steps; the text between them may occur again.
    void RunInTwoSteps(const std::function<void()>& run)
    {
        run();
        const Selection selection = Document().selection();
        if (!Document().undo())
            return;
        NoteText();
        Document().redo();
        Document().setSelection(selection.anchor, selection.focus);
    }
    void CtrlKey(Qt::Key key) { Key(key, Qt::ControlModifier); }
    void TypeSign(const QString& sign)
    {
        QTest::sendKeyEvent(QTest::Click, form->HTMLread, Qt::Key_unknown, sign, Qt::NoModifier);
    }

    // ---- helpers

    int Below(qsizetype count) { return int(random() % unsigned(std::max<qsizetype>(count, 1))); }
    template <typename List>
    const auto& OneOf(const List& list)
    {
        return *std::next(std::begin(list), Below(qsizetype(std::size(list))));
    }
    virtual Position AnyPlace()
    {
        const int line = Below(Document().loadedLineCount());
        return {line, Below(LineText(line).size() + 1)};
    }
    /// A caret, part of a line, a few complete lines, or a random range.
    void SelectAnything()
    {
        const Position from = AnyPlace();
        const int last = std::min(from.line + Below(4), Document().loadedLineCount() - 1);
        const Position inLine{from.line, Below(LineText(from.line).size() + 1)};
        const Position lineEnd{last, int(LineText(last).size())};
        const std::array<Selection, 6> choices{
            Selection{from, from},   {from, from}, {from, inLine}, {from, inLine}, {{from.line, 0}, lineEnd},
            {AnyPlace(), AnyPlace()}};
        // A large selection that is typed over leaves little of the book.
        const bool isLarge = largeEvery == 1 || Below(largeEvery) == 0;
        const Selection& choice = isLarge ? OneOf(choices) : choices[size_t(Below(5))];
        Document().setSelection(choice.anchor, choice.focus);
    }
    QPoint AnyPoint() { return {Below(View().clientWidth()), Below(View().clientHeight())}; }
    bool IsBare() { return Document().line(0).block == NoTag; }
    /// The whole text of the page, also if only a part of the page is loaded.
    virtual QString AllText() { return test::TextLines(Document()).join(test::LineBreak); }
    virtual test::Place CurrentPlace() { return test::PlaceOf(Document()); }
    void NoteText() { NoteText(AllText()); }
    void NoteText(const QString& text)
    {
        if (knowsUndoTexts)
            seen.insert(qHash(text));
    }
    /// The lines that are loaded.
    std::vector<LinePtr> AllLines();
    /// Part of a word of the book; empty if the drawn line has none.
    QString AnyLetters(int length, bool onlyOwn);

    std::vector<const char*> names;
    std::vector<int> weights;
    std::vector<Action> actions;
    QByteArray first;
    QString moreLines;
    int mostLines = 0;
    qsizetype mostText = 0;
    /// Every text that the page has had, if `knowsUndoTexts`: a tool can make several undo steps in one
    /// action.
    bool knowsUndoTexts = true;
    QSet<size_t> seen;
    /// The lines on the clipboard while it contains part of the page as HTML.
    QStringList copied;
    /// The run reloads what it has saved, also a book whose start is damaged.
    bool mayBreakStart = false;
    /// A file for the command that adds a picture.
    QString picture;
    std::mt19937 random;
    /// The whole page is saved, loaded and compared after so many steps; the text after each step.
    int pageEvery = 1;
    int stepCount = 0;
    /// One of so many selections may be a large one.
    int largeEvery = 1;
    std::vector<int> runs; ///< of each action
    std::string book; ///< of `SetUpAllWindows`
};

} // namespace vmk
