#include "Monkey.h"

#include "BookToDisplay.h"
#include "CodePages.h"
#include "Files.h"
#include "JournalReader.h"
#include "MainWindowSeams.h"
#include "Pictures.h"
#include "SaveBook.h"
#include "SessionRecorder.h"
#include "SettingsVariables.h"
#include "UnsavedText.h"

#include <QRegularExpression>

#include <algorithm>
#include <fstream>

/// The book of the monkey, and what is checked after its actions.
namespace vmk {

using namespace Qt::StringLiterals;
using test::LineBreak;
using test::Place;

namespace {

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
    // A declaration counts as one only if it is the first tag.
    if (declaration < 0 || text.indexOf(u'<') < declaration)
        return text;
    const qsizetype after = text.indexOf(u'<', declaration + 1);
    return after < 0 ? QString() : text.mid(after);
}

} // namespace

int FromEnvironment(const char* name, int standard)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : standard;
}

void Monkey::SetUp()
{
    OpenBook(Book());
    // With another book, too, the file is exactly the text of the page.
    BinaryPart.clear();
    OutputEncoding = u"utf-8"_s;
    NoteBook();
    AddTyping();
    AddMoves();
    AddPastes();
    AddCommands();
}

void Monkey::SetUpAllWindows(std::string openedBook)
{
    book = std::move(openedBook);
    const bool hasPicture = book.find("<binary") != std::string::npos;
    if (const size_t end = book.rfind("</FictionBook>"); end != std::string::npos && !hasPicture)
        book.insert(end, Binary("a.png", SmallPng()));
    boxAnswer = true;
    workplace.Make(u"picture.png"_s, SmallPng());
    picture = workplace.Path(u"picture.png"_s);
    pageEvery = 100;
    largeEvery = 10;
    knowsUndoTexts = false;
    mayBreakStart = true;
    OpenBook(book);
    OutputEncoding = u"utf-8"_s;
    NoteBook();
    AddTyping();
    AddMoves();
    AddPastes();
    AddCommands();
    AddTools();
}

std::string Monkey::Book()
{
    if (const QString path = qEnvironmentVariable("VMK_MONKEY_BOOK"); !path.isEmpty())
        return ReadFileText(path);
    std::string text = SmallBook;
    text.replace(text.find("Third line."), 11,
                 "Third <a l:href=\"#n1\">link</a> line with \xf0\x9d\x94\xbb and a\xc2\xa0"
                 "fixed blank, \xd1\x81\xd0\xbb\xd0\xbe\xd0\xb2\xd0\xbe.</p><!-- a note -->"
                 "<p id=\"n1\">End.");
    return text;
}

std::vector<LinePtr> Monkey::AllLines()
{
    std::vector<LinePtr> all;
    all.reserve(size_t(Document().loadedLineCount()));
    for (int i = 0; i < Document().loadedLineCount(); ++i)
        all.push_back(Document().linePtr(i));
    return all;
}

QString Monkey::AnyLetters(int length, bool onlyOwn)
{
    // The names that the page's own mark-up contains.
    static const QString markup = u"div style margin-left px class span amp nbsp lt gt firstdiv id font br"_s;
    const QString& line = LineText(Below(Document().loadedLineCount()));
    const int from = Below(line.size() - length);
    const QString letters = line.mid(from, length);
    const bool isWord = letters.size() == length && std::all_of(letters.begin(), letters.end(), [](QChar c) {
                            return c.isLetter() && !c.isSurrogate();
                        });
    return isWord && !(onlyOwn && markup.contains(letters, Qt::CaseInsensitive)) ? letters : QString();
}

void Monkey::NoteBook()
{
    first = Document().savePage();
    mostLines = Document().lineCount() + 100;
    mostText = AllText().size() + 12'000;
    moreLines.clear();
    const int body = FindLine(u"<body"_s);
    for (int line = body; line < std::min(body + 20, Document().lineCount()); ++line)
        moreLines += page::item(Document(), line + 1).outerHTML();
    seen.clear();
    copied.clear();
    NoteText();
}

/// The same number of redo steps must restore what an undo has reverted.
void Monkey::Undo()
{
    const std::vector<LinePtr> before = AllLines();
    const QByteArray page = pageEvery == 1 ? Document().savePage() : QByteArray();
    const int wanted = std::max(UndoSteps, 1);
    int steps = 0;
    while (steps < wanted && Document().undo())
        ++steps;
    for (int step = 0; step < steps; ++step)
        Document().redo();
    ASSERT_TRUE(
        std::ranges::equal(AllLines(), before, [](const LinePtr& a, const LinePtr& b) { return *a == *b; }));
    ASSERT_TRUE(pageEvery != 1 || Document().savePage() == page);
    CtrlKey(Qt::Key_Z);
}

void Monkey::KeepSize()
{
    qsizetype length = 0;
    for (int i = 0; i < Document().lineCount(); ++i)
        length += LineText(i).size() + 1;
    if (Document().lineCount() > mostLines || length > mostText) {
        Document().setSelection({5, 0}, Document().end());
        Key(Qt::Key_Delete);
        NoteText();
    } else if (length < 500) {
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
void Monkey::CheckReload(std::string savedBook)
{
    static const QRegularExpression empty(u"<([^<>/]+?)([^<>]*)></\\1>"_s);
    const auto alike = [](const QString& text) {
        static const QRegularExpression ampersands(u"&\uFE0C?(amp;)*"_s);
        QString bare = WithoutBlanks(text.mid(text.indexOf("?>"_L1) + 2)).replace(ampersands, u"&"_s);
        return bare.replace(u'\'', u'"').replace(empty, u"<\\1\\2/>"_s);
    };
    QString file = QString::fromStdString(savedBook);
    file.replace("&lt;"_L1, u"\u2039"_s).replace("&gt;"_L1, u"\u203a"_s).replace("&amp;"_L1, "&"_L1);
    const SeamGuard<void(const QString&)> status{StatusSeam(), [](const QString&) {}};
    NamespaceErrorWarning = 0;
    ASSERT_TRUE(ConvertBookToDisplay(savedBook, true));
    DisplayDocument loaded;
    loaded.loadPage(QByteArray::fromStdString(savedBook));
    ASSERT_EQ(alike(test::TextLines(loaded).join(LineBreak)), alike(file));
}

/// The saved file contains the text of the page in every state.
void Monkey::CheckFile()
{
    if (IsBookEmpty())
        return;
    OutputStyle = OneOf(std::array{u"compact"_s, u"line ends"_s});
    ASSERT_TRUE(SaveBook(CurrentBook));
    const BookState state = StateOfBook();
    CheckText(CurrentBook, AllText(), state);
    // A preview is decoded as the open book is, by design.
    if (WorkCodePage == CodePageUtf8)
        CheckReload(TextOfFile(CurrentBook).remove(state.pictures).toStdString());
}

Monkey::BookState Monkey::StateOfBook()
{
    return {QString::fromStdString(BinaryPart), BookKeepsText};
}

void Monkey::CheckText(const QString& path, QString text, const BookState& state)
{
    const bool beginsWithDeclaration = text.startsWith("<?xml version"_L1);
    text = Saved(text);
    text.replace(u'\u2039', u"&lt;"_s).replace(u'\u203a', u"&gt;"_s);
    QString file = TextOfFile(path);
    // The pictures follow the text unchanged.
    ASSERT_TRUE(file.contains(state.pictures));
    file.remove(state.pictures);
    // Whether an ampersand is escaped depends on the mark-up around it.
    static const QRegularExpression ampersands(u"&(amp;)*"_s);
    const auto alike = [](QString part) { return WithoutBlanks(part.replace(ampersands, u"&"_s)); };
    // Of a book that does not begin with its declaration, or did not when it was loaded, other parts are
    // kept.
    if ((mayBreakStart && state.keepsText) || !beginsWithDeclaration) {
        ASSERT_TRUE(alike(file).endsWith(alike(text.mid(text.size() / 4)))) << path.toStdString();
        return;
    }
    ASSERT_TRUE(file.startsWith("<?xml version"_L1)) << file.toStdString();
    ASSERT_EQ(alike(file.mid(file.indexOf("?>"_L1) + 2)), alike(text));
}

void Monkey::CheckJournal()
{
    Recorder()->waitUntilWritten();
    const QString folder = RecoveryFolder();
    const QStringList journals = QDir(folder).entryList({u"*.journal"_s}, QDir::Files);
    ASSERT_LE(journals.size(), 1);
    if (journals.isEmpty()) {
        ASSERT_FALSE(Recorder()->hasUnsavedText());
        return;
    }
    const std::optional<RecordedSession> session
        = ReadJournal(ReadFileText(folder + u'/' + journals.front()));
    ASSERT_TRUE(session && session->isComplete);
    DisplayDocument recovered;
    ShowSession(session->state, recovered);
    ASSERT_TRUE(recovered.savePage() == Document().savePage());
    ASSERT_EQ(*session->state.binary, BinaryPart);
}

void Monkey::CheckUndoOfAll()
{
    // The marker of a resize is removed before the pages are compared.
    ASSERT_TRUE(WaitFor([this] { return !form->TmpBookmarkTimer->isActive(); }));
    const QByteArray last = Document().savePage();
    // The run may have ended after an undo, with more redo steps than are undone here.
    int undone = 0;
    for (; Document().undo(); ++undone) { }
    EXPECT_TRUE(Document().savePage() == first);
    for (; undone > 0; --undone)
        Document().redo();
    EXPECT_TRUE(Document().savePage() == last);
}

void Monkey::Step()
{
    std::discrete_distribution<size_t> any(weights.begin(), weights.end());
    const size_t choice = any(random);
    if (Below(3) == 0)
        SelectAnything();
    const Place place = CurrentPlace();
    SCOPED_TRACE(testing::Message() << names[choice] << " at " << place.start().line << ':'
                                    << place.start().offset << " to " << place.end().line << ':'
                                    << place.end().offset);
    ++runs[choice];
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
        ASSERT_TRUE(!knowsUndoTexts || seen.contains(qHash(text))) << text.toStdString();
        break;
    case Outcome::Around: {
        const QString now = WithoutBlanks(text);
        ASSERT_TRUE(now.startsWith(WithoutBlanks(place.left)));
        ASSERT_TRUE(now.endsWith(WithoutBlanks(place.right)));
        ASSERT_GE(now.indexOf(WithoutBlanks(place.selected), WithoutBlanks(place.left).size()), 0)
            << place.selected.toStdString() << "\n  in " << LineText(place.start().line).toStdString();
        break;
    }
    case Outcome::Anything:
        break;
    }
    NoteText(text);
    if (++stepCount % pageEvery == 0)
        CheckPage();
}

} // namespace vmk
