#include "SpellCheckF.h"

#include "Desktop.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "StartUpVariables.h"
#include "WindowFunctions.h"
#include "WindowOffMatch.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QStackedLayout>
#include <QTimer>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int BottomRightOfReference = 3;
constexpr int ReportLines = 5;

const QLatin1StringView CheckTitle(" VMK: Spell Check");
const QLatin1StringView DictionaryTitle(" Edit Custom Dictionary");
const QLatin1StringView NoSuggestions("no suggestions");

QPointer<SpellCheckF>& TheForm()
{
    static QPointer<SpellCheckF> form;
    return form;
}

} // namespace

// ---------------------------------------------------------------- opening and closing

void SpellCheckF::ShowForm(Form1& owner)
{
    if (SpellCheckF* open = Instance()) {
        open->raise();
        open->activateWindow();
        return;
    }
    auto* form = new SpellCheckF(owner);
    TheForm() = form;
    form->adjustSize();
    PlaceFormBeside(*form, owner, BottomRightOfReference, 0, 0);
    form->show();
    form->activateWindow();
}

SpellCheckF* SpellCheckF::Instance()
{
    return TheForm();
}

SpellCheckF::SpellCheckF(Form1& owner)
    // With a parent, so that it is above the main window.
    : QWidget(&owner, Qt::Dialog | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint)
    , form(owner)
    , check(*this, shelf)
    , suggestions([this](const QString& word) {
        QMetaObject::invokeMethod(
            this, [this, word] { suggestionsFound(word); }, Qt::QueuedConnection);
    })
{
    setObjectName(u"SpellCheckF"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(CheckTitle);
    makeControls();
    layOut();
    connectControls();
    setDictionaryMode(false);

    check.Custom.LoadCustomWords(CustomDictionaryFile);
    // In the background, so that they are loaded at the first start.
    check.Prepare(display());
}

SpellCheckF::~SpellCheckF() = default;

DisplayDocument& SpellCheckF::display() const
{
    return form.HTMLread->document();
}

void SpellCheckF::closeEvent(QCloseEvent* event)
{
    check.CloseSpellDocument(true);
    TheForm() = nullptr;
    SetPointer(Pointer::Default);
    page::empty(display());
    QWidget::closeEvent(event);
}

void SpellCheckF::unload()
{
    close();
}

void SpellCheckF::PageReplaced()
{
    check.PageReplaced();
}

// ---------------------------------------------------------------- controls

QPushButton* SpellCheckF::makeButton(const char* name, const char* caption, const char* shortcut)
{
    auto* button = new QPushButton(QLatin1StringView(caption), this);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(true);
    if (shortcut) {
        button->setShortcut(QKeySequence(QLatin1StringView(shortcut)));
        button->setToolTip(button->text() + u" ("_s + QLatin1StringView(shortcut) + u')');
    }
    return button;
}

void SpellCheckF::makeControls()
{
    const auto makeField
        = [this](const char* name, const char* labelName, const char* caption, QLabel*& label) {
              auto* field = new QLineEdit(this);
              field->setObjectName(QLatin1StringView(name));
              label = new QLabel(QLatin1StringView(caption), this);
              label->setObjectName(QLatin1StringView(labelName));
              label->setBuddy(field);
              field->setAccessibleName(label->text());
              return field;
          };
    txtWord = makeField("txtWord", "lblWord", "found word", lblWord);
    txtReplaceWith = makeField("txtReplaceWith", "lblReplaceWith", "replace by", lblReplaceWith);

    lstWords = new QListWidget(this);
    lstWords->setObjectName(u"lstWords"_s);
    lstWords->setAccessibleName(u"suggestions"_s);
    CustWords = new QListWidget(this);
    CustWords->setObjectName(u"CustWords"_s);
    CustWords->setAccessibleName(u"custom dictionary"_s);
    CustWords->setSelectionMode(QAbstractItemView::ExtendedSelection);

    ReportL = new QLabel(this);
    ReportL->setObjectName(u"ReportL"_s);
    ReportL->setAccessibleName(u"report"_s);
    ReportL->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    ReportL->setTextFormat(Qt::PlainText);
    ReportL->setMinimumHeight(ReportL->fontMetrics().lineSpacing() * ReportLines);
    ReportL->setMinimumWidth(ReportL->fontMetrics().horizontalAdvance(u"search area: from cursor down  "_s));

    StartB = makeButton("StartB", "start", "Alt+S");
    SelIniB = makeButton("SelIniB", "sel ini", "Alt+N");
    ReplaceB = makeButton("ReplaceB", "replace", "Alt+R");
    Ignore = makeButton("Ignore", "ignore", "Alt+I");
    Add = makeButton("Add", "add", "Alt+A");
    Edit = makeButton("Edit", "edit", "Alt+E");
    Cancel = makeButton("Cancel", "cancel", "Alt+C");
    Help = makeButton("Help", "help");
    // The button has no action, by design.
    Help->setEnabled(false);
    remove = makeButton("remove", "remove");
    ClearAll = makeButton("ClearAll", "clear all");
    Done = makeButton("Done", "done");
    Cancel1 = makeButton("Cancel1", "cancel");
}

void SpellCheckF::layOut()
{
    auto* grid = new QGridLayout(this);
    grid->addWidget(lblWord, 0, 0);
    grid->addWidget(txtWord, 0, 1);
    grid->addWidget(StartB, 0, 2);
    grid->addWidget(lblReplaceWith, 1, 0);
    grid->addWidget(txtReplaceWith, 1, 1);
    grid->addWidget(SelIniB, 1, 2);

    lists = new QStackedLayout;
    lists->addWidget(lstWords);
    lists->addWidget(CustWords);
    grid->addLayout(lists, 2, 0, 1, 2);
    grid->addWidget(ReportL, 2, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);

    auto* row = new QHBoxLayout;
    for (QPushButton* button : {remove, ClearAll, Done, Cancel1, ReplaceB, Ignore, Add, Edit, Cancel, Help})
        row->addWidget(button);
    row->addStretch(1);
    grid->addLayout(row, 3, 0, 1, 3);

    // In the order of use.
    const QList<QWidget*> order
        = {txtReplaceWith, lstWords, CustWords, ReplaceB, Ignore,  Add,    Edit,    Cancel,
           Help,           remove,   ClearAll,  Done,     Cancel1, StartB, SelIniB, txtWord};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void SpellCheckF::connectControls()
{
    const auto onClick
        = [this](QPushButton* button, auto action) { connect(button, &QPushButton::clicked, this, action); };
    onClick(StartB, [this] { startCheck(); });
    onClick(SelIniB, [this] { expandSelection(); });
    onClick(ReplaceB, [this] { replaceWord(); });
    onClick(Ignore, [this] { ignoreWord(); });
    onClick(Add, [this] { check.Add(txtWord->text()); });
    onClick(Edit, [this] { enterDictionaryMode(); });
    onClick(Cancel, [this] {
        check.FinishSpellCheck();
        check.CloseSpellDocument(false);
    });
    onClick(remove, [this] { removeCustomWords(); });
    onClick(ClearAll, [this] { clearCustomWords(); });
    onClick(Done, [this] {
        QStringList words;
        for (int i = 0; i < CustWords->count(); ++i)
            words.append(CustWords->item(i)->text());
        check.Custom.SaveCustomWordsFromList(words, CustomDictionaryFile);
        leaveDictionaryMode();
    });
    onClick(Cancel1, [this] { leaveDictionaryMode(); });

    connect(lstWords, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        replacementEdited = true;
        txtReplaceWith->setText(item->text());
    });
    connect(lstWords, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        txtReplaceWith->setText(item->text());
        replaceWord();
    });
    lstWords->installEventFilter(this);
    connect(txtReplaceWith, &QLineEdit::textEdited, this, [this] { replacementEdited = true; });
    connect(txtReplaceWith, &QLineEdit::returnPressed, this, [this] { replaceWord(); });

    suggestionTime = new QTimer(this);
    suggestionTime->setSingleShot(true);
    connect(suggestionTime, &QTimer::timeout, this, [this] {
        if (!pendingWord.isEmpty())
            showSuggestions(suggestions.found(pendingWord).words);
    });
}

bool SpellCheckF::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        Form_Activate();
    return QWidget::event(event);
}

void SpellCheckF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

bool SpellCheckF::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == lstWords && event->type() == QEvent::KeyPress && lstWords->currentItem()) {
        const int key = static_cast<QKeyEvent&>(*event).key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            txtReplaceWith->setText(lstWords->currentItem()->text());
            replaceWord();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SpellCheckF::Form_Activate()
{
    StartB->setEnabled(true);
    if (SkipActivate != 0) {
        SkipActivate = 0;
        return;
    }
    clearWord();
    check.TakeArea(display());
}

// ---------------------------------------------------------------- called by the walk

void SpellCheckF::showReport(const QString& text)
{
    if (!ReportL->isHidden() && ReportL->text() == text)
        return;
    ReportL->setText(text);
    ReportL->setVisible(true);
    // The window processes no paint events during a check.
    ReportL->repaint();
}

void SpellCheckF::hideReport()
{
    // The label keeps its space.
    ReportL->clear();
}

void SpellCheckF::showWord(const QString& word)
{
    txtWord->setText(word);
    txtWord->setCursorPosition(0);
    lstWords->clear();
    txtReplaceWith->clear();
    replacementEdited = false;
    pendingWord = word;
    suggestionsDue = std::chrono::steady_clock::now() + SuggestionWait;
    suggestionTime->start(SuggestionWait);
    suggestions.setDictionaries(check.dictionaries());
    suggestions.request(word, check.followingWord());
    suggestionsFound(word);
    MoveFindWinOffMatch(*this, form, check.SpellChunk);
}

void SpellCheckF::clearWord()
{
    pendingWord.clear();
    suggestionTime->stop();
    txtWord->clear();
    txtReplaceWith->clear();
    lstWords->clear();
}

void SpellCheckF::setStartEnabled(bool enabled)
{
    StartB->setEnabled(enabled);
}

// ---------------------------------------------------------------- suggestions

void SpellCheckF::suggestionsFound(const QString& word)
{
    const SuggestionWorker::Found found = suggestions.found(word);
    if (!found.complete)
        return;
    // Late suggestions are shown only if there were none, and if the user has done nothing meanwhile.
    const bool isLate = pendingWord.isEmpty() && check.isAtHit() && txtWord->text() == word
        && !replacementEdited && lstWords->count() == 1 && lstWords->item(0)->text() == NoSuggestions
        && !found.words.isEmpty();
    if (word == pendingWord || isLate)
        showSuggestions(found.words);
}

void SpellCheckF::showSuggestions(const QStringList& words)
{
    pendingWord.clear();
    suggestionTime->stop();
    lstWords->clear();
    if (words.isEmpty()) {
        lstWords->addItem(NoSuggestions);
        return;
    }
    lstWords->addItems(words);
    lstWords->setCurrentRow(0);
    if (!replacementEdited)
        txtReplaceWith->setText(words.first());
}

void SpellCheckF::waitForSuggestions()
{
    if (!pendingWord.isEmpty())
        showSuggestions(suggestions.wait(pendingWord, suggestionsDue).words);
}

/// Waits until the search for suggestions has ended. Returns false if it takes too long.
bool SpellCheckF::findAllSuggestions()
{
    constexpr std::chrono::seconds Longest(10);
    const QString word = txtWord->text();
    if (word.isEmpty())
        return true;
    const HourglassScope hourglass;
    const SuggestionWorker::Found found = suggestions.wait(word, std::chrono::steady_clock::now() + Longest);
    if (found.complete)
        showSuggestions(found.words);
    return found.complete;
}

// ---------------------------------------------------------------- buttons

void SpellCheckF::startCheck()
{
    check.Start(display());
}

void SpellCheckF::expandSelection()
{
    TextRange range = page::createRange(display());
    range.expand(u"word");
    range.select();
}

void SpellCheckF::replaceWord()
{
    waitForSuggestions();
    // An empty field deletes the word, but not before the user can know that there are no suggestions.
    if (!replacementEdited && txtReplaceWith->text().isEmpty() && !findAllSuggestions())
        return ShowStatus(u"the suggestions are not complete yet"_s);
    if (form.HTMLread->designMode() == "On"_L1)
        check.Replace(txtReplaceWith->text());
}

void SpellCheckF::ignoreWord()
{
    clearWord();
    check.Continue();
}

// ---------------------------------------------------------------- the dictionary mode

void SpellCheckF::enterDictionaryMode()
{
    StartB->setEnabled(false);
    SkipActivate = 1;
    setDictionaryMode(true);
    if (check.Custom.CustomWordCount != 0) {
        CustWords->clear();
        CustWords->addItems(check.Custom.ListedWords());
    }
}

void SpellCheckF::leaveDictionaryMode()
{
    SkipActivate = 1;
    StartB->setEnabled(true);
    setDictionaryMode(false);
}

void SpellCheckF::setDictionaryMode(bool on)
{
    lists->setCurrentWidget(on ? CustWords : lstWords);
    for (QPushButton* button : {ReplaceB, Ignore, Cancel, Add, Edit, Help})
        button->setVisible(!on);
    for (QPushButton* button : {remove, ClearAll, Done, Cancel1})
        button->setVisible(on);
    setWindowTitle(on ? DictionaryTitle : CheckTitle);
}

void SpellCheckF::removeCustomWords()
{
    const QList<QListWidgetItem*> selected = CustWords->selectedItems();
    if (selected.isEmpty())
        return;
    if (selected.size() == CustWords->count()) {
        clearCustomWords();
        return;
    }
    qDeleteAll(selected);
    QStringList remaining;
    for (int i = 0; i < CustWords->count(); ++i)
        remaining.append(CustWords->item(i)->text());
    check.Custom.Remove(remaining, selected.size());
}

void SpellCheckF::clearCustomWords()
{
    CustWords->clear();
    check.Custom.ClearAll();
}

} // namespace vmk
