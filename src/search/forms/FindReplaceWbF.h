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

/// Returns true while the find window is open. F3 and F4 are then find and replace in the main window too.
[[nodiscard]] bool FindWindowOpen();

/// Runs find (F3) or replace (F4) while the find window is open and neither Ctrl nor Alt is held.
/// \param shift  0 without Shift; 1, which the buttons of the find window pass, blocks; any other value does
///               not, which is intended
/// \return true if it acted
bool HandleFindKey(int keyCode, int shift, bool ctrl, bool alt);

/// The find window. It is modeless, stays above the main window, and exists while it is open.
class FindReplaceWbF : public QWidget
{
    Q_OBJECT

public:
    /// Returns the open window, or null.
    [[nodiscard]] static FindReplaceWbF* Instance();
    /// Opens the window, or raises the open one.
    static void Show(Form1& owner);
    ~FindReplaceWbF() override;

    // ---- searching

    void DoFind();
    void DoReplace();
    void DoReplaceAll();
    /// Starts a new search at the selection of the display. See `NewSearch`.
    void BeginSearch(bool keepPosition);
    /// Sets the focus to `FindCB`.
    /// \param interval  the delay in milliseconds; 0 for none
    void SetFocusToFindWin(int interval);
    /// Starts a new search after the display has loaded another page.
    void PageReplaced();
    /// Returns true during a replace-all.
    [[nodiscard]] bool isRunning() const { return running; }

    // ---- fields and lists

    enum class Which
    {
        Find,
        Replace
    };
    /// Inserts the selection of the display, of at most 50 characters, into a field.
    void PasteMainSelection(Which which, bool clearFirst);
    /// Returns the selected text of the display if it is short. A long selection becomes the scope of the
    /// search instead.
    /// \param insert  also sets the text of `FindCB`
    QString MainSelectionText(bool insert);
    /// Opens the list below a field, or closes it.
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
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit FindReplaceWbF(Form1& ownerForm);

    // Construction.
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
