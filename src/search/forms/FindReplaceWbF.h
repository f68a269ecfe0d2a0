#pragma once

#include "FindReplaceFunctions.h"
#include "FindReplaceRegExpFuncs.h"
#include "SearchHistories.h"

#include <QWidget>

class QAction;
class QCheckBox;
class QFrame;
class QLabel;
class QMenu;
class QPushButton;
class QRadioButton;
class QTimer;
class QToolButton;

namespace vmk {

class DisplayView;
class Form1;
class HistoryDropDown;
class SearchField;

/// The find window is open: the keys F3 and F4 are find and replace in the main window too.
[[nodiscard]] bool FindWindowOpen();

/// Runs find (F3) or replace (F4) while the find window is open and neither Ctrl nor Alt is held.
/// \param shift 0 for no; exactly 1, as the find window's own buttons give it, blocks, anything else does
///     not: this is meant
/// \return true if it acted
bool HandleFindKey(int keyCode, int shift, bool ctrl, bool alt);

/// The find window, over the main window and not modal. It exists while it is open.
class FindReplaceWbF : public QWidget
{
    Q_OBJECT

public:
    /// The window while it is open, else null.
    [[nodiscard]] static FindReplaceWbF* Instance();
    /// Opens the window, or brings the open one to the front.
    static void Show(Form1& owner);
    ~FindReplaceWbF() override;

    // ---- searching

    void DoFind();
    void DoReplace();
    void DoReplaceAll();
    /// Begins anew from the display's selection.
    void BeginSearch(bool keepPosition);
    /// Gives the focus to `FindCB`, after some milliseconds or with 0 at once.
    void SetFocusToFindWin(int interval);
    /// Another page has come: the search begins anew on it.
    void PageHasCome();
    /// A replace-all is running.
    [[nodiscard]] bool isRunning() const { return running; }

    // ---- fields and lists

    enum class Which
    {
        Find,
        Replace
    };
    /// Takes the display's selection, of at most 50 characters, into a field.
    void PasteMainSelection(Which which, bool clearFirst);
    /// The display's selection if it is short. A long one becomes the scope of the search instead.
    /// \param insert it goes into `FindCB` too
    QString MainSelectionText(bool insert);
    /// Opens a list below its field, or closes it.
    void ToggleList(Which which);
    void HideBothLists();

    SearchField* FindCB = nullptr;
    SearchField* ReplaceCB = nullptr;
    HistoryDropDown* ListF = nullptr;
    HistoryDropDown* ListR = nullptr;
    QToolButton* DropF = nullptr;
    QToolButton* DropR = nullptr;
    QLabel* FindL = nullptr;
    QLabel* ReplaceL = nullptr;
    QPushButton* FindB = nullptr;
    QPushButton* ReplaceB = nullptr;
    QPushButton* ReplaceAllB = nullptr;
    QPushButton* UpdateB = nullptr;
    QPushButton* PasteToReplaceB = nullptr;
    QPushButton* HelpB = nullptr;
    QCheckBox* WholeWordB = nullptr;
    QCheckBox* MatchCaseB = nullptr;
    QCheckBox* RegExpB = nullptr;
    QFrame* DirectionOF = nullptr;
    QRadioButton* DownB = nullptr;
    QRadioButton* UpB = nullptr;
    QFrame* SearchOF = nullptr;
    QCheckBox* SelectionB = nullptr;
    QCheckBox* AutoFindNextB = nullptr;
    QCheckBox* MarkReplacedB = nullptr;
    QFrame* FrReport = nullptr;
    QLabel* ReportL = nullptr;
    QTimer* TimerFindFocus = nullptr;
    QTimer* TimerFocusToFindB = nullptr;
    QMenu* MnFind = nullptr;
    QMenu* MnRepl = nullptr;
    QMenu* MnHisF = nullptr;
    QMenu* MnHisR = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit FindReplaceWbF(Form1& ownerForm);

    // Building the window.
    void makeControls();
    void makeFields();
    void makeOptions();
    void makeButtons();
    void layOut();
    void makeMenus();
    QAction* addEntry(QMenu& menu, const char* name, const char* caption, const std::function<void()>& act);
    void makeFieldMenu(Which which);
    void makeListMenu(Which which);
    void connectField(Which which);
    void place();

    // Searching.
    [[nodiscard]] DisplayView& view() const;
    [[nodiscard]] SearchOptions options() const;
    [[nodiscard]] bool byRegExp() const;
    [[nodiscard]] bool mayReplace() const;
    void showFind(const FindResult& result);
    void runReplaceAll();
    void finishRun(const ReplaceAllResult& result);
    void setRunningButtons(bool idle);
    void showReport(const QString& text, bool refresh);
    void scrollMatchToMiddle();
    void moveOffMatch(const TextRange& match);
    void regExpToggled();

    // Fields and lists.
    [[nodiscard]] HistoryMode mode() const;
    [[nodiscard]] SearchField& field(Which which) const;
    [[nodiscard]] HistoryDropDown& list(Which which) const;
    [[nodiscard]] History& history(Which which);
    void hideList(Which which, bool refocus);
    void showHistory(Which which);
    void addToHistory(Which which);
    void removeFromHistory(Which which, bool all);
    void saveHistoryAs(Which which);
    void loadHistoryFrom(Which which);
    void saveHistories();

    Form1& owner;
    SearchState state;
    SearchHistories histories;
    bool running = false;
    bool closeAfterRun = false;
};

} // namespace vmk
