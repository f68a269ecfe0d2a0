#include "BookToDisplay.h"
#include "CommandModel.h"
#include "EditReference.h"
#include "MainWindowSeams.h"
#include "SaveBook.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"
#include "WindowTest.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QSet>

#include <array>
#include <fstream>
#include <iterator>
#include <random>

/// Thousands of random keys, clicks and commands on a book in the real window. After each of them the text of
/// the page equals the result of a plain model of the command, and a saved and reloaded page has the same
/// text; sometimes the saved file is compared with the page. At the end everything is undone to the first
/// page and redone to the last.
///
/// `VMK_MONKEY_STEPS`, `VMK_MONKEY_SEED` and `VMK_MONKEY_BOOK`, the path of a book, in the environment make
/// it run longer or with another book.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using test::LineBreak;
using test::Place;
using test::With;

constexpr QStringView PairSign = u"\U0001d53b";

/// The expected text after an action.
struct Outcome
{
    enum Known
    {
        Exactly,
        ButForBlanks, ///< When lines are merged, HTML decides which blanks are kept.
        FromBefore, ///< An earlier text of the page.
    };

    QString text;
    Known known = Exactly;
};

QString WithoutBlanks(QString text)
{
    static const QRegularExpression blanks(u"[\\s\\x{a0}\\x{7f}]+"_s);
    return text.remove(blanks);
}

QString TextOfFile(const QString& path)
{
    std::ifstream file(path.toStdString(), std::ios::binary);
    return QString::fromStdString(std::string(std::istreambuf_iterator<char>(file), {}));
}

/// The part of the page's text that is saved: the declaration, and what is before the element after it, are
/// written again.
QString Saved(const QString& text)
{
    const qsizetype declaration = text.indexOf("<?xml version"_L1);
    if (declaration < 0)
        return text;
    const qsizetype after = text.indexOf(u'<', declaration + 1);
    return after < 0 ? QString() : text.mid(after);
}

/// The lines under the selection as the plain oracle paints them: it may end a comment at a "<".
QString Repainted(const Place& place)
{
    const int first = place.start().line;
    const bool atBreak = !place.caret() && place.end().offset == 0;
    const int last = place.end().line - (atBreak ? 1 : 0);
    QStringList html;
    for (int line = first; line <= last; ++line)
        html.append(place.lines[line].toHtmlEscaped().replace("&quot;"_L1, "\""_L1));
    const reference::PaintRequest request{TagHighlighting == 1, TagFontWeight.toStdString(),
                                          DisplayFontWeight.toStdString()};
    static const QRegularExpression tags(u"<[^>]*>"_s);
    QString text = QString::fromStdString(reference::PaintLines(html.join(LineBreak).toStdString(), request));
    text.remove(tags).replace("&lt;"_L1, "<"_L1).replace("&gt;"_L1, ">"_L1).replace("&amp;"_L1, "&"_L1);
    return (place.lines.mid(0, first) + text.split(LineBreak) + place.lines.mid(last + 1)).join(LineBreak);
}

class Monkey : public WindowTest
{
protected:
    /// Runs a random action and returns the expected result.
    using Action = std::function<Outcome(const Place&)>;

    void SetUp() override
    {
        OpenBook(Book());
        // With another book, too, the file is exactly the text of the page.
        BinaryPart.clear();
        OutputEncoding = u"utf-8"_s;
        first = Document().savePage();
        mostLines = Document().lineCount() + 100;
        mostText = AllText().size() + 12'000;
        const int body = FindLine(u"<body"_s);
        for (int line = body; line < std::min(body + 20, Document().lineCount()); ++line)
            moreLines += page::item(Document(), line + 1).outerHTML();
        NoteText();
        AddTyping();
        AddMoves();
        AddPastes();
        AddCommands();
    }

    static std::string Book()
    {
        if (const QString path = qEnvironmentVariable("VMK_MONKEY_BOOK"); !path.isEmpty())
            return TextOfFile(path).toStdString();
        std::string text = SmallBook;
        text.replace(text.find("Third line."), 11,
                     "Third <a l:href=\"#n1\">link</a> line with \xf0\x9d\x94\xbb and a\xc2\xa0"
                     "fixed blank, \xd1\x81\xd0\xbb\xd0\xbe\xd0\xb2\xd0\xbe.</p><!-- a note -->"
                     "<p id=\"n1\">End.");
        return text;
    }

    void AddTyping();
    void AddMoves();
    void AddPastes();
    void AddCommands();

    /// Runs and checks one action.
    void Step();
    void CheckPage();
    void CheckFile();
    void CheckReload(std::string book);
    void Undo();
    /// Keeps the page small, but not empty.
    void KeepSize();

    // ---- actions

    void Add(const char* name, int weight, Action action)
    {
        names.push_back(name);
        weights.push_back(weight);
        actions.push_back(std::move(action));
    }
    /// An action that does not change the text.
    void AddQuiet(const char* name, int weight, std::function<void()> run)
    {
        Add(name, weight, [run](const Place& place) {
            run();
            return Outcome{test::Unchanged(place)};
        });
    }
    /// A key or a command with a known resulting text.
    void AddEdit(const char* name, int weight, std::function<void()> run,
                 std::function<QString(const Place&)> expected)
    {
        Add(name, weight, [run, expected](const Place& place) {
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
    Position AnyPlace()
    {
        const int line = Below(Document().lineCount());
        return {line, Below(LineText(line).size() + 1)};
    }
    /// A caret, part of a line, a few complete lines, or a random range.
    void SelectAnything()
    {
        const Position from = AnyPlace();
        const int last = std::min(from.line + Below(4), Document().lineCount() - 1);
        const Position inLine{from.line, Below(LineText(from.line).size() + 1)};
        const Position lineEnd{last, int(LineText(last).size())};
        const std::array<Selection, 6> choices{
            Selection{from, from},   {from, from}, {from, inLine}, {from, inLine}, {{from.line, 0}, lineEnd},
            {AnyPlace(), AnyPlace()}};
        const Selection& choice = OneOf(choices);
        Document().setSelection(choice.anchor, choice.focus);
    }
    QPoint AnyPoint() { return {Below(View().clientWidth()), Below(View().clientHeight())}; }
    bool IsBare() { return Document().line(0).block == NoTag; }
    QString AllText() { return test::TextLines(Document()).join(LineBreak); }
    static QByteArray HashOf(const QString& text)
    {
        return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5);
    }
    void NoteText() { seen.insert(HashOf(AllText())); }

    std::vector<const char*> names;
    std::vector<int> weights;
    std::vector<Action> actions;
    QByteArray first;
    QString moreLines;
    int mostLines = 0;
    qsizetype mostText = 0;
    /// Every text that the page has had.
    QSet<QByteArray> seen;
    /// The lines on the clipboard while it contains part of the page as HTML.
    QStringList copied;
    std::mt19937 random;
};

// ---------------------------------------------------------------- what it does

void Monkey::AddTyping()
{
    Add("type", 60, [this](const Place& place) {
        static const QStringList signs{
            u"a"_s,  u"Z"_s, u"7"_s, u"<"_s, u">"_s,      u"/"_s, u"&"_s,
            u"\""_s, u"-"_s, u"!"_s, u"="_s, u"\u0436"_s, u"'"_s, PairSign.toString()};
        const QString& sign = OneOf(signs);
        TypeSign(sign);
        return Outcome{With(place, sign)};
    });
    AddEdit(
        "space", 8, [this] { Key(Qt::Key_Space); }, test::WithSpace);
    AddEdit(
        "nbsp", 3, [this] { CtrlKey(Qt::Key_Space); },
        [](const Place& p) { return With(p, QString(QChar(test::Marker))); });
    AddEdit(
        "enter", 6, [this] { Key(Qt::Key_Return); },
        [](const Place& p) { return With(p, QString(LineBreak)); });
    AddEdit(
        "backspace", 12, [this] { Key(Qt::Key_Backspace); },
        [](const Place& p) {
            const qsizetype length = std::min<qsizetype>(p.left.size(), p.left.endsWith(PairSign) ? 2 : 1);
            return p.caret() ? p.left.chopped(length) + p.right : test::Deleted(p);
        });
    AddEdit(
        "delete", 6, [this] { Key(Qt::Key_Delete); },
        [](const Place& p) {
            return p.caret() ? p.left + p.right.mid(p.right.startsWith(PairSign) ? 2 : 1) : test::Deleted(p);
        });
    Add("undo", 14, [this](const Place&) {
        Undo();
        return Outcome{{}, Outcome::FromBefore};
    });
    Add("redo", 7, [this](const Place&) {
        for (int undos = Below(3); undos > 0; --undos)
            Undo();
        CtrlKey(Qt::Key_Y);
        return Outcome{{}, Outcome::FromBefore};
    });
}

void Monkey::AddMoves()
{
    QWidget* page = View().viewport();
    AddQuiet("move", 30, [this] {
        static constexpr std::array Keys{Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,     Qt::Key_Down,
                                         Qt::Key_Home, Qt::Key_End,   Qt::Key_PageUp, Qt::Key_PageDown};
        static constexpr std::array<Qt::KeyboardModifiers, 4> Held{
            Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::ShiftModifier | Qt::ControlModifier};
        Key(OneOf(Keys), OneOf(Held));
    });
    AddQuiet("select all", 1, [this] { CtrlKey(Qt::Key_A); });
    AddQuiet("select", 20, [this] { SelectAnything(); });
    AddQuiet("click", 6, [=, this] { QTest::mouseClick(page, Qt::LeftButton, {}, AnyPoint()); });
    AddQuiet("shift-click", 3,
             [=, this] { QTest::mouseClick(page, Qt::LeftButton, Qt::ShiftModifier, AnyPoint()); });
    AddQuiet("double click", 2, [=, this] {
        const QPoint point = AnyPoint();
        QTest::mouseDClick(page, Qt::LeftButton, {}, point);
        QTest::mouseRelease(page, Qt::LeftButton, {}, point);
    });
    AddQuiet("press noted", 4, [] {
        StoreOffsets();
        StoreMouseDownRange();
    });
    AddQuiet("timers", 1, [] { QTest::qWait(15); });
    AddQuiet("scroll", 3, [this] { View().scroll(0, Below(View().scrollHeight())); });
    AddQuiet("resize", 1, [this] { form->resize(700 + Below(500), 400 + Below(300)); });
}

void Monkey::AddPastes()
{
    struct Clipboard
    {
        QString html;
        QStringList lines;
    };
    static const std::array texts{
        Clipboard{u"two  words &lt;b&gt;"_s, {u"two words <b>"_s}},
        Clipboard{u"plain\r\ntext \U0001d53b of\nlines"_s, {u"plain text \U0001d53b of lines"_s}},
        Clipboard{u"<DIV class=x>one <SPAN class=t>&lt;p&gt;</SPAN></DIV>\r\n<DIV>two</DIV>"_s,
                  {u"one <p>"_s, u"two"_s}},
        Clipboard{u"<P class=Normal>a &amp;amp; b</P>"_s, {u"a &amp; b"_s}}};
    const auto outcome = [](const Place& place, const QString& html, const QStringList& lines, bool bare) {
        const bool inLine = !html.contains("<DIV"_L1);
        const QString text = inLine ? With(place, lines.join(LineBreak))
            : bare                  ? test::Unchanged(place)
                                    : test::WithLines(place, lines, false);
        return Outcome{text, Outcome::ButForBlanks};
    };

    Add("paste", 4, [this, outcome](const Place& place) {
        const Clipboard& text = OneOf(texts);
        copied.clear();
        SetClipboardText(text.html);
        const bool bare = IsBare();
        CtrlKey(Qt::Key_V);
        return outcome(place, text.html, text.lines, bare);
    });
    Add("paste as html", 3, [this](const Place& place) {
        const Clipboard& text = OneOf(texts);
        copied.clear();
        SetClipboardText(text.html);
        const bool bare = IsBare();
        CtrlKey(Qt::Key_H);
        return Outcome{bare ? test::Unchanged(place) : test::WithLines(place, text.lines, true),
                       Outcome::ButForBlanks};
    });
    Add("paste a copy", 6, [this, outcome](const Place& place) {
        if (WithoutBlanks(copied.join(LineBreak)).isEmpty())
            return Outcome{test::Unchanged(place)};
        const bool bare = IsBare();
        Key(Qt::Key_Insert, Qt::ShiftModifier);
        return outcome(place, ClipboardText(), copied, bare);
    });
    AddQuiet("copy", 4, [this] {
        copied = SelectedText().split(u"\r\n"_s);
        CtrlKey(Qt::Key_C);
    });
    AddEdit(
        "cut", 2,
        [this] {
            copied = SelectedText().split(u"\r\n"_s);
            CtrlKey(Qt::Key_X);
        },
        test::Deleted);
    AddQuiet("copy as text", 1, [this] {
        copied.clear();
        CtrlKey(Qt::Key_T);
    });
}

void Monkey::AddCommands()
{
    const auto run = [this](Command command) { return [this, command] { form->RunCommand(command); }; };
    const auto tagged = [](const QString& tag) {
        return [tag](const Place& p) { return test::Around(p, u'<' + tag + u'>', "</"_L1 + tag + u'>'); };
    };
    AddEdit(
        "bold", 2, [this] { CtrlKey(Qt::Key_B); }, tagged(u"strong"_s));
    AddEdit(
        "italic", 2, [this] { CtrlKey(Qt::Key_I); }, tagged(u"emphasis"_s));
    AddEdit("superscript", 1, run(Command::Superscript), tagged(u"sup"_s));
    AddEdit("subscript", 1, run(Command::Subscript), tagged(u"sub"_s));
    AddEdit("lower case", 1, run(Command::LowerCase),
            [](const Place& p) { return With(p, p.selected.toLower()); });
    AddEdit("upper case", 1, run(Command::UpperCase),
            [](const Place& p) { return With(p, p.selected.toUpper()); });
    AddEdit("proper case", 1, run(Command::ProperCase),
            [](const Place& p) { return With(p, test::ProperOf(p.selected)); });
    AddEdit("delete by menu", 2, run(Command::Delete), test::Deleted);

    AddQuiet("right shift", 6, [this] { RunInTwoSteps([this] { Key(Qt::Key_Tab); }); });
    AddQuiet("left shift", 6, [this] { RunInTwoSteps([this] { CtrlKey(Qt::Key_Tab); }); });
    Add("repaint", 12, [this](const Place& place) {
        const QString text = IsBare() ? test::Unchanged(place) : Repainted(place);
        RunInTwoSteps([this] { Key(Qt::Key_Escape); });
        return Outcome{text};
    });
    AddQuiet("field", 3, [this] {
        static constexpr std::array Fields{Command::InsertTextField, Command::InsertTagField,
                                           Command::InsertTagAttributeValueField};
        // The layout decides whether a selection of line breaks is visible.
        if (!test::PlaceOf(Document()).lineBreaksOnly())
            RunInTwoSteps([this] { form->RunCommand(OneOf(Fields)); });
    });
    AddQuiet("position", 2,
             [this] { form->RunCommand(Below(2) == 0 ? Command::PreviousPosition : Command::NextPosition); });
    AddQuiet("context menu", 2, [this] {
        form->ShowPopUpMenu();
        form->MnRightClick->close();
        form->RunCommand(Below(2) == 0 ? Command::GoToLink : Command::CheckId);
    });
    AddQuiet("validate", 1, [this] { Key(Qt::Key_F8); });
    AddQuiet("save", 1, [this] { CheckFile(); });
}

/// The same number of redo steps must restore what an undo has reverted.
void Monkey::Undo()
{
    const QByteArray before = Document().savePage();
    const int wanted = std::max(UndoSteps, 1);
    int steps = 0;
    while (steps < wanted && Document().undo())
        ++steps;
    for (int step = 0; step < steps; ++step)
        Document().redo();
    ASSERT_EQ(Document().savePage(), before);
    CtrlKey(Qt::Key_Z);
}

void Monkey::KeepSize()
{
    if (Document().lineCount() > mostLines || AllText().size() > mostText) {
        Document().setSelection({5, 0}, Document().end());
        Key(Qt::Key_Delete);
        NoteText();
    } else if (AllText().size() < 500) {
        Document().insertLines(Document().lineCount(), moreLines);
        NoteText();
    }
}

// ---------------------------------------------------------------- what it checks

/// A page that is saved and loaded again has the same text.
void Monkey::CheckPage()
{
    DisplayDocument loaded;
    loaded.loadPage(Document().savePage());
    QString text = AllText();
    QString again = test::TextLines(loaded).join(LineBreak);
    // A page writes both in the same way.
    text.replace(QChar(QChar::Nbsp), u' ');
    again.replace(QChar(QChar::Nbsp), u' ');
    ASSERT_EQ(again, text);
}

/// A loaded book shows the text of its file. Parts that the parser may write differently, empty elements
/// and quotes, are normalised.
void Monkey::CheckReload(std::string book)
{
    static const QRegularExpression empty(u"<([^<>/]+?)([^<>]*)></\\1>"_s);
    const auto alike = [](const QString& text) {
        static const QRegularExpression ampersands(u"&\uFE0C?(amp;)*"_s);
        QString bare = WithoutBlanks(text.mid(text.indexOf("?>"_L1) + 2)).replace(ampersands, u"&"_s);
        return bare.replace(u'\'', u'"').replace(empty, u"<\\1\\2/>"_s);
    };
    QString file = QString::fromStdString(book);
    file.replace("&lt;"_L1, u"\u2039"_s).replace("&gt;"_L1, u"\u203a"_s).replace("&amp;"_L1, "&"_L1);
    const SeamGuard<void(const QString&)> status{StatusSeam(), [](const QString&) {}};
    NamespaceErrorWarning = 0;
    ASSERT_TRUE(ConvertBookToDisplay(book, true));
    DisplayDocument loaded;
    loaded.loadPage(QByteArray::fromStdString(book));
    ASSERT_EQ(alike(test::TextLines(loaded).join(LineBreak)), alike(file));
}

/// The saved file contains the text of the page in every state.
void Monkey::CheckFile()
{
    if (IsBookEmpty())
        return;
    OutputStyle = OneOf(std::array{u"compact"_s, u"line ends"_s});
    ASSERT_TRUE(SaveBook(CurrentBook));
    QString text = Saved(AllText());
    text.replace(u'\u2039', u"&lt;"_s).replace(u'\u203a', u"&gt;"_s);
    QString file = TextOfFile(CurrentBook);
    CheckReload(file.toStdString());
    ASSERT_TRUE(file.startsWith("<?xml version"_L1)) << file.toStdString();
    // Whether an ampersand is escaped depends on the mark-up around it.
    static const QRegularExpression ampersands(u"&(amp;)*"_s);
    file.replace(ampersands, u"&"_s);
    text.replace(ampersands, u"&"_s);
    ASSERT_EQ(WithoutBlanks(file.mid(file.indexOf("?>"_L1) + 2)), WithoutBlanks(text));
}

void Monkey::Step()
{
    std::discrete_distribution<size_t> any(weights.begin(), weights.end());
    const size_t choice = any(random);
    if (Below(3) == 0)
        SelectAnything();
    const Place place = test::PlaceOf(Document());
    SCOPED_TRACE(testing::Message() << names[choice] << " at " << place.start().line << ':'
                                    << place.start().offset << " to " << place.end().line << ':'
                                    << place.end().offset);
    const Outcome outcome = actions[choice](place);
    const QString text = AllText();
    switch (outcome.known) {
    case Outcome::Exactly:
        ASSERT_EQ(text, outcome.text);
        break;
    case Outcome::ButForBlanks:
        ASSERT_EQ(WithoutBlanks(text), WithoutBlanks(outcome.text));
        break;
    case Outcome::FromBefore:
        ASSERT_TRUE(seen.contains(HashOf(text))) << text.toStdString();
        break;
    }
    NoteText();
    CheckPage();
}

int FromEnvironment(const char* name, int standard)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : standard;
}

TEST_F(Monkey, KeepsEveryCharacterAndUndoesItAll)
{
    random.seed(unsigned(FromEnvironment("VMK_MONKEY_SEED", 1)));
    const int steps = FromEnvironment("VMK_MONKEY_STEPS", 3'000);
    for (int step = 0; step < steps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        Step();
        KeepSize();
    }
    if (HasFatalFailure())
        return;
    // The marker of a resize is removed before the pages are compared.
    ASSERT_TRUE(WaitFor([this] { return !form->TmpBookmarkTimer->isActive(); }));
    const QByteArray last = Document().savePage();
    // The run may have ended after an undo, with more redo steps than are undone here.
    int undone = 0;
    for (; Document().undo(); ++undone) { }
    EXPECT_EQ(Document().savePage(), first);
    for (; undone > 0; --undone)
        Document().redo();
    EXPECT_EQ(Document().savePage(), last);
}

} // namespace
} // namespace vmk
