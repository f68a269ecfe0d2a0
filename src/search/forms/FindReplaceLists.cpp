#include "FindReplaceWbF.h"

#include "Boxes.h"
#include "Dialogs.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "Form1.h"
#include "HistoryDropDown.h"
#include "MainWindowSeams.h"
#include "SearchField.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QTimer>
#include <QToolButton>

/// The find window: its input fields, their menus and their histories.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// A history's file type.
struct HistoryType
{
    const char* key;
    const char* title;
};

HistoryType TypeOf(FindReplaceWbF::Which which, HistoryMode mode)
{
    const bool isRegExp = mode == HistoryMode::RegExp;
    if (which == FindReplaceWbF::Which::Find)
        return isRegExp ? HistoryType{"rghf", "find history (RegExp) "} : HistoryType{"hf", "find history "};
    return isRegExp ? HistoryType{"rghr", "replace history (RegExp) "}
                    : HistoryType{"hr", "replace history "};
}

FileDialogRequest HistoryDialog(FileDialogRequest::Kind kind, const QString& title, const HistoryType& type)
{
    if (!FileExists(HistoryFolder))
        MakeFolder(HistoryFolder);
    const QString key = QLatin1StringView(type.key);
    return {kind, title, HistoryFolder, QString(),
            QLatin1StringView(type.title) + u"(*."_s + key + u")|*."_s + key + u"|"_s};
}

} // namespace

HistoryMode FindReplaceWbF::mode() const
{
    return byRegExp() ? HistoryMode::RegExp : HistoryMode::Plain;
}

SearchField& FindReplaceWbF::field(Which which) const
{
    return which == Which::Find ? *FindCB : *ReplaceCB;
}

HistoryDropDown& FindReplaceWbF::list(Which which) const
{
    return which == Which::Find ? *ListF : *ListR;
}

History& FindReplaceWbF::history(Which which)
{
    return which == Which::Find ? histories.find(mode()) : histories.replace(mode());
}

// ---------------------------------------------------------------- menus

QAction* FindReplaceWbF::addEntry(QMenu& menu, const char* name, const char* caption,
                                  const std::function<void()>& act)
{
    QAction* entry = menu.addAction(QLatin1StringView(caption));
    entry->setObjectName(QLatin1StringView(name));
    entry->setEnabled(bool(act));
    if (act)
        connect(entry, &QAction::triggered, this, act);
    return entry;
}

void FindReplaceWbF::makeMenus()
{
    MnFind = new QMenu(this);
    MnRepl = new QMenu(this);
    MnHisF = new QMenu(this);
    MnHisR = new QMenu(this);
    for (const Which which : {Which::Find, Which::Replace}) {
        makeFieldMenu(which);
        makeListMenu(which);
    }
}

void FindReplaceWbF::makeFieldMenu(Which which)
{
    const bool isFind = which == Which::Find;
    QMenu& menu = isFind ? *MnFind : *MnRepl;
    menu.setObjectName(isFind ? u"MnFind"_s : u"MnRepl"_s);
    SearchField& box = field(which);
    // The two blanks in the caption for the replace field are given.
    addEntry(menu, isFind ? "FPaste" : "RPaste",
             isFind ? "paste (Ctrl+V, Shift+Ins)" : "paste  (Ctrl+V, Shift+Ins)",
             [&box] { box.PasteIntoBox(false); });
    addEntry(menu, isFind ? "FPasteSelected" : "RPasteSelected", "paste selected",
             [this, which] { PasteMainSelection(which, false); });
    // The entry of the replace field has no action, by design.
    QAction* hex = addEntry(menu, isFind ? "FPasteHex" : "RPasteHex", "paste as RegExp hex",
                            isFind ? [this] {
                                const QString escapes
                                    = SelectionAsRegExpHex(page::createRange(view().document()));
                                if (!escapes.isEmpty())
                                    FindCB->insert(escapes);
                            } : std::function<void()>());
    addEntry(menu, isFind ? "FClearAndPaste" : "RClearAndPaste", "clear and paste",
             [&box] { box.PasteIntoBox(true); });
    addEntry(menu, isFind ? "FClear" : "RClear", "clear (Ctrl+Del)", [&box] { box.ClearBox(false); });
    addEntry(menu, isFind ? "FDelete" : "RDelete", "delete (Del)", [&box] { box.ClearBox(true); });
    addEntry(menu, isFind ? "FListAdd" : "RListAdd", "add to history",
             [this, which] { addToHistory(which); });
    connect(&box, &SearchField::menuRequested, this, [this, isFind, hex, &menu](const QPoint& at) {
        HideBothLists();
        hex->setEnabled(isFind && byRegExp());
        menu.popup(at);
    });
}

void FindReplaceWbF::makeListMenu(Which which)
{
    const bool isFind = which == Which::Find;
    QMenu& menu = isFind ? *MnHisF : *MnHisR;
    menu.setObjectName(isFind ? u"MnHisF"_s : u"MnHisR"_s);
    addEntry(menu, isFind ? "FListRemove" : "RListRemove", "remove",
             [this, which] { removeFromHistory(which, false); });
    addEntry(menu, isFind ? "FListRemoveAll" : "RListRemoveAll", "remove all",
             [this, which] { removeFromHistory(which, true); });
    addEntry(menu, isFind ? "FListSaveAs" : "RListSaveAs", "save as",
             [this, which] { saveHistoryAs(which); });
    addEntry(menu, isFind ? "FListLoad" : "FRListLoad", "load from file",
             [this, which] { loadHistoryFrom(which); });
    connect(&list(which), &HistoryDropDown::menuRequested, this,
            [&menu](const QPoint& at) { menu.popup(at); });
}

// ---------------------------------------------------------------- the display's selection

QString FindReplaceWbF::MainSelectionText(bool insert)
{
    constexpr qsizetype MostTaken = 50;
    const TextRange selection = page::createRange(view().document());
    const int width = selection.boundingWidth();
    if (width > ShortSelectionWidth) {
        SelectionB->setChecked(true);
        BeginSearch(false);
        return {};
    }
    QString text = width > 0 ? selection.text() : QString();
    if (text.isEmpty() || text.size() > MostTaken)
        return {};
    if (insert)
        FindCB->Fill(text);
    return text;
}

void FindReplaceWbF::PasteMainSelection(Which which, bool clearFirst)
{
    const QString text = page::createRange(view().document()).text();
    if (TrimBlanks(text).isEmpty()) {
        PlainBox(u"no text selected in the main window"_s);
    } else if (text.size() > SearchField::MostPasted) {
        PlainBox(u"too long text selected in the main window"_s);
    } else {
        if (clearFirst)
            field(which).ClearBox(false);
        field(which).insert(text);
    }
}

// ---------------------------------------------------------------- lists

void FindReplaceWbF::ToggleList(Which which)
{
    constexpr int WiderThanField = 4;
    constexpr int AboveReportTwips = 10;
    HistoryDropDown& shown = list(which);
    if (shown.isVisible()) {
        hideList(which, true);
        return;
    }
    HideBothLists();
    const QWidget& box = field(which);
    const QWidget& button = which == Which::Find ? *DropF : *DropR;
    const int top = box.y() + box.height();
    const int bottom
        = ReportL->mapTo(this, QPoint(0, ReportL->height())).y() - qRound(AboveReportTwips / TwipsPerPixelY);
    shown.open({box.x(), top, box.width() + button.width() + WiderThanField, bottom - top});
}

void FindReplaceWbF::hideList(Which which, bool refocus)
{
    if (!list(which).isVisible())
        return;
    // Before the list is hidden, which would move the focus to a button.
    if (refocus || list(which).hasFocus())
        field(which).setFocus(Qt::OtherFocusReason);
    list(which).hide();
    if (refocus)
        TimerFocusToFindB->start();
}

void FindReplaceWbF::HideBothLists()
{
    hideList(Which::Find, false);
    hideList(Which::Replace, false);
}

void FindReplaceWbF::showHistory(Which which)
{
    list(which).setEntries(history(which).entries);
}

void FindReplaceWbF::addToHistory(Which which)
{
    if (!AddToHistoryList(history(which).entries, field(which).text()))
        return;
    history(which).changed = true;
    showHistory(which);
}

void FindReplaceWbF::removeFromHistory(Which which, bool all)
{
    QStringList& entries = history(which).entries;
    const int row = list(which).clickedRow();
    if (all)
        entries.clear();
    else if (row >= 0 && row < entries.size())
        entries.removeAt(row);
    history(which).changed = true;
    showHistory(which);
}

void FindReplaceWbF::saveHistoryAs(Which which)
{
    const HistoryType type = TypeOf(which, mode());
    const QStringList& entries = history(which).entries;
    if (entries.isEmpty()) {
        // The misspelling is given.
        PlainBox(u"list is empty, no sence to save"_s);
        return;
    }
    const QString name = AskFile(HistoryDialog(FileDialogRequest::Save, u"Save history to file"_s, type));
    if (!name.isEmpty()) {
        const QString path = WithoutExtension(name) + u'.' + QLatin1StringView(type.key);
        const bool mayWrite
            = !FileExists(path) || ConfirmBox(u"File exists:\r\n"_s + path + u"\r\nReplace?"_s);
        if (mayWrite && !WriteHistoryFile(entries, path))
            ShowStatus(u"history could not be saved: "_s + path);
    }
    HideBothLists();
}

void FindReplaceWbF::loadHistoryFrom(Which which)
{
    const HistoryType type = TypeOf(which, mode());
    const QString path = AskFile(HistoryDialog(FileDialogRequest::Open, u"Load history from file"_s, type));
    QStringList entries;
    if (!path.isEmpty() && FileExists(path)) {
        if (ReadHistoryFile(entries, path)) {
            history(which).entries = entries;
            history(which).changed = true;
            showHistory(which);
        } else {
            ShowStatus(u"history could not be read: "_s + path);
        }
    }
    HideBothLists();
}

void FindReplaceWbF::saveHistories()
{
    if (!histories.SaveHistories(mode()))
        ShowStatus(u"search history could not be saved"_s);
}

} // namespace vmk
