#include "SpellCheckWalk.h"

#include "BookLanguage.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "Desktop.h"
#include "DisplayPage.h"
#include "MainWindowSeams.h"
#include "Sounds.h"
#include "StartUpVariables.h"

#include <QLocale>

#include <utility>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int WordsOfChunk = 200;

const QLatin1StringView WholeText("search area: whole text");
const QLatin1StringView SelectedText("search area: selected text");
const QLatin1StringView FromCursorDown("search area: from cursor down");

/// Returns true if the end of a range is inside a word of the check. The words of the display are shorter.
bool CutsWord(const TextRange& range)
{
    const DisplayDocument* document = range.ofDocument();
    return document && IsInsideSpellWord(document->line(range.end().line).text, range.end().offset);
}

} // namespace

// ---------------------------------------------------------------- errors

ProofreadingErrors::ProofreadingErrors(QString checkedText, SpellChecker& wordChecker)
    : text(std::move(checkedText))
    , checker(wordChecker)
    , words(text)
{
}

const ProofreadingErrors::Error* ProofreadingErrors::Item(int32_t index)
{
    while (index > int32_t(found.size()) && words.next()) {
        if (checker.isSuspicious(words.word()))
            found.push_back({words.word().toString(), words.start()});
    }
    return index >= 1 && index <= int32_t(found.size()) ? &found[size_t(index) - 1] : nullptr;
}

// ---------------------------------------------------------------- the area

SpellCheckWalk::SpellCheckWalk(SpellCheckWindow& shownIn, SpellShelf& dictionaries)
    : window(shownIn)
    , shelf(dictionaries)
    , checker(dictionaries)
    , chosen({}, {}, {})
{
}

void SpellCheckWalk::TakeArea(DisplayDocument& document)
{
    atHit = false;
    const bool none = page::type(document) == "None"_L1;
    SpellArea = page::createRange(document);
    SpellChunk = none ? page::createTextRange(document) : SpellArea;
    SearchAreaText = none ? WholeText : SelectedText;
}

void SpellCheckWalk::Prepare(const DisplayDocument& document)
{
    chosen = SpellDictionaries(InstalledDictionaries(DictionaryFolders()), BookLanguage(document),
                               QLocale::system().name());
    checker.setDictionaries(chosen);
    checker.prepare();
}

void SpellCheckWalk::Start(DisplayDocument& document)
{
    CloseSpellDocument(false);
    WordsFound = 0;
    WordsReplaced = 0;
    window.setStartEnabled(false);
    window.clearWord();
    Prepare(document);
    SpellChunk = page::createRange(document);
    SpellArea = SpellChunk;
    if (page::type(document) == "None"_L1) {
        SpellArea.setEndPoint(u"EndToEnd", page::createTextRange(document));
        SearchAreaText = FromCursorDown;
    } else {
        SpellArea.expand(u"word");
        SpellChunk.expand(u"word");
        SpellChunk.moveEnd(u"word", WordsOfChunk);
        SearchAreaText = SelectedText;
    }
    LimitChunk();
    int16_t fromScratch = 0;
    HtmlSpellCheck(fromScratch);
}

void SpellCheckWalk::LimitChunk()
{
    SpellChunk.moveEnd(u"word", WordsOfChunk);
    // A word with a hyphen or an apostrophe is several words of the display. The limit does not divide it.
    for (int i = 0; i < WordsOfChunk && CutsWord(SpellChunk); ++i)
        SpellChunk.moveEnd(u"word", 1);
    if (SpellChunk.compareEndPoints(u"EndToEnd", SpellArea) == 1)
        SpellChunk.setEndPoint(u"EndToEnd", SpellArea);
}

// ---------------------------------------------------------------- the walk

void SpellCheckWalk::HtmlSpellCheck(int16_t& continueCheck)
{
    const bool isContinued = std::exchange(continueCheck, int16_t(0)) != 0;
    const HourglassScope hourglass;
    atHit = false;
    if (!isContinued && !startWord())
        return;
    if (isContinued && walk())
        return;
    if (isContinued && !nextChunk())
        return;
    checkChunks();
}

void SpellCheckWalk::Continue()
{
    int16_t goOn = -1;
    HtmlSpellCheck(goOn);
}

bool SpellCheckWalk::startWord()
{
    if (!WordLoaded) {
        window.showReport(u"\r\n...loading dictionary...\r\n...wait, please..."_s);
        WordLoaded = true;
    }
    const bool found = checker.hasDictionary();
    reportProblems();
    if (found)
        return true;
    StopBox(u"cannot find Word dictionary"_s);
    window.unload();
    return false;
}

/// Shows each dictionary that could not be loaded, once.
void SpellCheckWalk::reportProblems()
{
    for (const QString& problem : shelf.problems()) {
        if (reportedProblems.contains(problem))
            continue;
        reportedProblems.append(problem);
        ShowStatus(problem);
    }
}

void SpellCheckWalk::checkChunks()
{
    do {
        if (collectErrors() && walk())
            return;
    } while (nextChunk());
}

bool SpellCheckWalk::collectErrors()
{
    window.showReport(u"\r\n...collecting suspicious words...\r\n...wait, please..."_s);
    // The display counts a line break as one character.
    SpellErrors
        = std::make_unique<ProofreadingErrors>(SpellChunk.text().replace("\r\n"_L1, "\r"_L1), checker);
    if (!SpellErrors->Item(1))
        return false;
    window.hideReport();
    CheckedCount = 0;
    ReplacedInChunk = 0;
    ErrorIndex = 0;
    PositionShift = 0;
    return true;
}

bool SpellCheckWalk::walk()
{
    while (SpellErrors) {
        ++ErrorIndex;
        const ProofreadingErrors::Error* error = SpellErrors->Item(ErrorIndex);
        if (!error)
            break;
        ++CheckedCount;
        if (Custom.IsCustomWord(error->Text)) {
            passOver(*error);
        } else {
            showHit(*error);
            return true;
        }
    }
    return false;
}

void SpellCheckWalk::moveTo(const ProofreadingErrors::Error& error)
{
    SpellChunk.setEndPoint(u"StartToStart", SpellArea);
    SpellChunk.move(u"character", int(error.Start) + PositionShift);
    SpellChunk.moveEnd(u"word");
}

void SpellCheckWalk::passOver(const ProofreadingErrors::Error& error)
{
    moveTo(error);
    // The check continues after the whole word, which may be several words of the display.
    TextRange wholeWord = SpellChunk;
    wholeWord.collapse(true);
    wholeWord.moveEnd(u"character", int(error.Text.size()));
    if (wholeWord.compareEndPoints(u"EndToEnd", SpellChunk) == 1)
        SpellChunk.setEndPoint(u"EndToEnd", wholeWord);
}

void SpellCheckWalk::showHit(const ProofreadingErrors::Error& error)
{
    window.showReport(u"\r\n...getting suggestions...\r\n"_s + SearchAreaText + u"\r\n"_s);
    moveTo(error);
    reportProblems();
    HitFound = SpellChunk.findText(error.Text, 1, TextRange::MatchCase);
    SpellChunk.select();
    ++WordsFound;
    atHit = true;
    window.showWord(error.Text);
    PlayProgramSound(u"ParseError.wav"_s, true);
    window.showReport(counts());
}

bool SpellCheckWalk::nextChunk()
{
    if (SpellChunk.compareEndPoints(u"EndToEnd", SpellArea) != -1) {
        FinishSpellCheck();
        CloseSpellDocument(false);
        return false;
    }
    SpellChunk.collapse(false);
    SpellArea.setEndPoint(u"StartToStart", SpellChunk);
    LimitChunk();
    return true;
}

QString SpellCheckWalk::counts() const
{
    return SearchAreaText + u"\r\nwords found: "_s + QString::number(WordsFound) + u"\r\nwords replaced: "_s
        + QString::number(WordsReplaced);
}

QString SpellCheckWalk::followingWord()
{
    const ProofreadingErrors::Error* error
        = atHit && SpellErrors ? SpellErrors->Item(ErrorIndex + 1) : nullptr;
    return error ? error->Text : QString();
}

void SpellCheckWalk::Replace(const QString& newText)
{
    DisplayDocument* document = SpellChunk.ofDocument();
    if (!document)
        return;
    // Without a hit the chunk may be the whole book, which must not be replaced by mistake.
    if (!atHit
        && (newText.isEmpty() || SpellChunk.isEmpty() || !SpellChunk.isEqual(page::createRange(*document))))
        return;
    const QString old = SpellChunk.text();
    const bool endsWithBlank = old.endsWith(u' ');
    const QString text = endsWithBlank ? newText + u' ' : newText;
    PositionShift += int32_t(text.size() - old.size());
    SpellChunk.setText(text);
    ++ReplacedInChunk;
    ++WordsReplaced;
    window.showReport(counts());
    BookUnchanged = false;
    UndoSteps = 1;
    Continue();
}

void SpellCheckWalk::Add(const QString& word)
{
    if (word.isEmpty())
        return;
    Custom.AddWord(word);
    Custom.SaveCustomWords(CustomDictionaryFile);
    Continue();
}

void SpellCheckWalk::FinishSpellCheck()
{
    atHit = false;
    reportProblems();
    Beep();
    window.setStartEnabled(true);
    SetPointer(Pointer::Default);
    window.clearWord();
    window.showReport(u"Spell Check has been finished\r\n"_s + counts());
}

void SpellCheckWalk::CloseSpellDocument(bool quitWord)
{
    SetPointer(Pointer::Default);
    if (quitWord)
        WordLoaded = false;
    atHit = false;
    SpellErrors.reset();
    SpellChunk = TextRange();
    SpellArea = TextRange();
}

void SpellCheckWalk::PageReplaced()
{
    if (SpellErrors)
        FinishSpellCheck();
    SpellErrors.reset();
    SpellChunk = TextRange();
    SpellArea = TextRange();
}

} // namespace vmk
