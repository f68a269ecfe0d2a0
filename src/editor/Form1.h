#pragma once

#include "Commands.h"
#include "DisplayEvents.h"

#include <QHash>
#include <QMainWindow>
#include <QString>

class QAction;
class QComboBox;
class QKeyEvent;
class QLineEdit;
class QMenu;
class QTimer;
class QToolBar;

namespace vmk {

class DisplayView;
class PanelBar;
class SchemasF;

/// The main window, the only one. It shows the book's display and owns every command of the program: each
/// menu entry, each toolbar button and each shortcut ends in `RunCommand`. It also carries the way from a
/// navigation to a complete, editable document, and the timers that take work out of the display's events.
///
/// Window and controls are measured in twips, by the outer rectangle: a client area, the title bar, a menu
/// bar of 20 pixels and 8 pixels of edges in each direction, whatever the desktop's real frame is.
class Form1 : public QMainWindow
{
    Q_OBJECT

public:
    Form1();
    ~Form1() override;

    /// The one main window; null before it is made and after it is gone.
    [[nodiscard]] static Form1* Instance();

    // ---- start and stop

    /// The form's load event: places and shows the window, empties the temporary tree, and shows the
    /// welcome page on a first start, else the empty page. With `ValidateAfterLoad` no page is shown.
    void Load();
    /// Runs the steps of `Load` once more.
    void ReloadForm1();

    // ---- commands

    /// Runs the command's procedure. False, and nothing happens, when it has none yet.
    bool RunCommand(Command command);
    void LoadNewFbFile_Dialog();
    void LoadNewFbSchema_Dialog();
    void SaveFileAs_Dialog();
    /// Opens `LastFile`, or says that there is none.
    void OpenLastBook();
    /// The plain save, under `CurrentBook`.
    void SaveCurrentBook();
    void SaveAndReload();
    void ShowSchemas();
    /// Opens a page of the format's portal in the system's browser.
    /// @param path the page's path on its host, with a leading slash.
    void OpenPortalPage(const char* path);

    /// Opens the context menu at the mouse; the entries for links, ids and images are enabled as they fit.
    void ShowPopUpMenu();

    // ---- window

    /// Puts `ValidateOptL` behind the last button of the toolbar and `SchemaFileL` behind that.
    void MoveSchemaControls();
    /// Brings text, colours and state of `SchemaFileL` in line with `ValidateOptL` and `SchemaFile`.
    void RefreshSchemaField();
    /// Sets the schema file and, with it, validation against the schema.
    void UseSchema(const QString& path);
    /// Places the window by its outer rectangle, in twips; on the main screen if no screen is there.
    void PlaceForm(float left, float top, float width, float height);
    [[nodiscard]] float FormLeft() const;
    [[nodiscard]] float FormTop() const;
    [[nodiscard]] float FormWidth() const;
    [[nodiscard]] float FormHeight() const;
    /// The menu or context-menu entry of this name; null if there is none.
    [[nodiscard]] QAction* Entry(const char* name) const;
    /// The toolbar's button of this key; null if there is none.
    [[nodiscard]] QAction* ToolbarAction(const QString& key) const;

    // ---- events of the display

    void FileDoc_onkeydown(DisplayEvent& event);
    void FileDoc_onmousedown(DisplayEvent& event);
    void FileDoc_onmouseup(DisplayEvent& event);
    void FileDoc_ondblclick(DisplayEvent& event);
    void FileDoc_oncontextmenu(DisplayEvent& event);
    void FileDoc_ondragstart(DisplayEvent& event);
    void FileDoc_onfocusout(DisplayEvent& event);
    void FileDoc_onreadystatechange(DisplayEvent& event);
    void HTW_onresize(DisplayEvent& event);
    void HTW_onscroll(DisplayEvent& event);
    /// The navigation rule: sets `cancel` for every target but the program's own pages.
    void HTMLread_BeforeNavigate(const QString& target, bool& cancel);
    void HTMLread_DocumentComplete(const QString& location);

    // ---- controls

    DisplayView* HTMLread = nullptr;
    /// Bottom bar: general text, caret line, file length, and two panels that stay empty.
    PanelBar* Status = nullptr;
    /// Message bar above it.
    PanelBar* StatusMsg = nullptr;
    QToolBar* TB = nullptr;
    QComboBox* ValidateOptL = nullptr;
    QLineEdit* SchemaFileL = nullptr;
    QMenu* MnRightClick = nullptr;

    QTimer* TmpBookmarkTimer = nullptr;
    QTimer* TimerGetOffset = nullptr;
    QTimer* TimerShiftClick = nullptr;
    QTimer* TimerTrOnMouseDown = nullptr;
    QTimer* TimerTripleClick = nullptr;
    QTimer* TimerHtwFocus = nullptr;
    QTimer* TimerScroll = nullptr;
    QTimer* TimerPopUp = nullptr;
    QTimer* TimerWBDrop = nullptr;
    QTimer* TimerValidate = nullptr;
    QTimer* TimerDesignMode = nullptr;
    QTimer* TimerColor = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillSeams();
    void emptySeams();
    void makeMenus();
    void fillMenu(QMenu& menu, std::span<const MenuEntry> rows);
    void makeToolbar();
    void makeSchemaControls();
    void makeDisplay();
    void makeBars();
    void makeTimers();
    void connectDisplay();
    void thirdClick();
    [[nodiscard]] bool isAccelerator(const QKeyEvent& key) const;
    void layOut();
    void fileMenuOpens();
    void toolsMenuOpens();
    [[nodiscard]] static bool mayReplace(const QString& path);
    void loadDropped(const QStringList& paths);
    void useDroppedSchema(const QStringList& paths);

    QWidget* client = nullptr;
    SchemasF* schemas = nullptr;
    QHash<QString, QAction*> entries;
    /// A book dropped on the display, between its navigation and `TimerWBDrop`.
    QString droppedBook;
};

} // namespace vmk
