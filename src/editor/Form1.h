#pragma once

#include "ClTB.h"
#include "Commands.h"
#include "DisplayEvents.h"
#include "Seam.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <QString>

#include <memory>

class QAction;
class QComboBox;
class QKeyEvent;
class QLineEdit;
class QMenu;
class QTimer;
class QToolBar;

namespace vmk {

class BookSafety;
class DisplayView;
class PanelBar;
class SchemasF;

/// The main window; there is exactly one. It contains the book's display and runs every command of the
/// program: menu entries, toolbar buttons and shortcuts all call `RunCommand`. It also handles the steps from
/// a navigation to a complete, editable document, and the timers that defer work out of the display's events.
///
/// Window and controls are measured in twips by the outer rectangle. It consists of the client area, the
/// title bar, a menu bar of 20 pixels, and edges of 8 pixels in total horizontally and vertically, whatever
/// the real frame of the desktop is.
class Form1 : public QMainWindow
{
    Q_OBJECT

public:
    Form1();
    ~Form1() override;

    /// The main window; null before it is created and after it is deleted.
    [[nodiscard]] static Form1* Instance();

    // ---- start and stop

    /// The load event of the form: positions and shows the window, clears the temporary folder, and shows the
    /// welcome page on the first start, otherwise the empty page. With `ValidateAfterLoad`, shows no page.
    void Load();
    /// Runs the steps of `Load` again.
    void ReloadForm1();

    // ---- commands

    /// Runs the command's procedure. Returns false, and does nothing, if it has none yet.
    bool RunCommand(Command command);
    void LoadNewFbFile_Dialog();
    void LoadNewFbSchema_Dialog();
    void SaveFileAs_Dialog();
    /// Opens `LastFile`, or reports that there is none.
    void OpenLastBook();
    /// Saves the book to `CurrentBook`.
    void SaveCurrentBook();
    void SaveAndReload();
    void ShowSchemas();
    void OpenBookCleaner();
    /// Opens the dialog that customises the toolbar.
    void CustomiseToolbar();
    /// Opens a page of the format's web site in the system's browser.
    /// \param path  the path of the page on its host, with a leading slash
    void OpenPortalPage(const char* path);

    /// Opens the context menu at the mouse. Enables the entries for links, ids and images that apply.
    void ShowPopUpMenu();

    // ---- window

    /// Moves `ValidateOptL` after the last button of the toolbar, and `SchemaFileL` after it.
    void MoveSchemaControls();
    /// Updates text, colours and state of `SchemaFileL` from `ValidateOptL` and `SchemaFile`.
    /// \param problem  the reason why an existing schema cannot be used; its name is then red
    void RefreshSchemaField(const QString& problem = {});
    /// Sets the schema file and selects validation against the schema.
    void UseSchema(const QString& path);
    /// Positions the window by its outer rectangle, in twips; on the main screen if no screen is at that
    /// position.
    void PlaceForm(float left, float top, float width, float height);
    [[nodiscard]] float FormLeft() const;
    [[nodiscard]] float FormTop() const;
    [[nodiscard]] float FormWidth() const;
    [[nodiscard]] float FormHeight() const;
    /// The menu or context-menu entry with this name; null if there is none.
    [[nodiscard]] QAction* Entry(const char* name) const;
    /// The toolbar button with this key; null if there is none.
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
    /// The navigation rule: sets `cancel` for every target except the program's own pages.
    void HTMLread_BeforeNavigate(const QString& target, bool& cancel);
    void HTMLread_DocumentComplete(const QString& location);

    // ---- controls

    DisplayView* HTMLread = nullptr;
    /// The lower bar: general text, caret position, file length, and two panels that are always empty.
    PanelBar* Status = nullptr;
    /// The message bar above it.
    PanelBar* StatusMsg = nullptr;
    QToolBar* TB = nullptr;
    /// The toolbar's design and the user's order of it.
    ClTB Toolbar;
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
    void makeMenus();
    void fillMenu(QMenu& menu, std::span<const MenuEntry> rows);
    void makeToolbar();
    void buildToolbar();
    [[nodiscard]] int toolbarBand() const;
    [[nodiscard]] int controlHeight() const;
    void makeSchemaControls();
    void makeDisplay();
    void makeBars();
    void makeTimers();
    void connectDisplay();
    void thirdClick();
    void pastePrimary();
    void runFileKey(int keyCode);
    [[nodiscard]] bool isAccelerator(const QKeyEvent& key) const;
    void layOut();
    /// The height of a status bar in twips; larger for a large desktop font.
    [[nodiscard]] float barHeight() const;
    void storeWindowState() const;
    void restoreWindowState();
    void fileMenuOpens();
    void toolsMenuOpens();
    [[nodiscard]] static bool mayReplace(const QString& path);
    void loadDropped(const QStringList& paths);
    void useDroppedSchema(const QStringList& paths);

    SeamOwner seams;
    std::unique_ptr<BookSafety> safety;
    QWidget* client = nullptr;
    SchemasF* schemas = nullptr;
    QPointer<QWidget> customising;
    QHash<QString, QAction*> entries;
    /// A book that was dropped on the display, between its navigation and `TimerWBDrop`.
    QString droppedBook;
};

} // namespace vmk
