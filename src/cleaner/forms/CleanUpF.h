#pragma once

#include "CleanUpTable.h"

#include <QWidget>

#include <functional>

class QComboBox;
class QLabel;
class QMenu;
class QPushButton;
class QTimer;

namespace vmk {

class CleanUpGrid;
class CleanUpModel;
class DisplayView;

/// The book cleaner: a table of replacements that is edited in place, and applied to the book or a part of
/// it.
///
/// Rows that are not in a file are kept in a recovery copy in `UserCleanUpFolder`, from a second after each
/// change on, so that closing the window or loading another table does not lose them.
class CleanUpF : public QWidget
{
    Q_OBJECT

public:
    /// What the window needs of the program around it.
    struct Context
    {
        QWidget* owner = nullptr;
        DisplayView* display = nullptr;
        std::function<void()> openFragmentEditor;
    };

    /// Opens the window, or brings the open one to the front.
    static void Open(const Context& context);
    /// The open window; null while there is none.
    [[nodiscard]] static CleanUpF* Instance();

    ~CleanUpF() override;

    // ---- the file

    void SaveCleanUpFile();
    /// Reads `CurrentCleanUpFile`. \return false for a missing file and, after a box, for a bad signature;
    /// then the rows stay.
    bool ReadCleanUpFile();
    void SaveCleanUpFileAs();
    void LoadCleanUpFile();
    void DeleteCleanUpFiles();
    void ReloadCleanUpFile();

    // ---- the table

    /// Where a new row goes.
    enum class RowPlace
    {
        Last,
        Before,
        After
    };

    void DrawCleanUpTable();
    void AddCleanUpRow(RowPlace where, bool fromMenu);
    void RemoveSelectedCleanUpRow(bool fromMenu);
    void RemoveAllCleanUpRows();
    void SetAllEnabled(bool enabled);
    void ChangeCleanUpFont();

    /// Runs the table over the book.
    void CleanUpBookFragment();

    // ---- controls

    CleanUpGrid* ListDH = nullptr;
    QComboBox* CleanWhere = nullptr;
    QLabel* CleanL = nullptr;
    QPushButton* ApplyB = nullptr;
    QPushButton* AddB = nullptr;
    QPushButton* RemoveB = nullptr;
    QPushButton* RemoveAllB = nullptr;
    QPushButton* SaveB = nullptr;
    QPushButton* SaveAsB = nullptr;
    QPushButton* LoadB = nullptr;
    QPushButton* HelpB = nullptr;
    QMenu* MnuCLeanUp = nullptr;
    QTimer* TimerWBDrop = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    explicit CleanUpF(const Context& openedIn);

    void makeControls();
    void makeMenu();
    void makeConnections();
    void showMenu(QPoint at, int row);
    void showScope(const QString& scope);
    [[nodiscard]] int chosenRow(bool fromMenu);
    void useFont();
    void copyRows();
    void pasteRows();
    void clearOrRemove();
    void fileDropped(const QString& path);
    [[nodiscard]] CleanUpTable tableOnScreen() const;
    [[nodiscard]] bool loadFile(QString path);
    void keepUnsavedRows();
    void rowsAreSaved();

    Context context;
    CleanUpModel* model = nullptr;
    QTimer* recoveryTimer = nullptr;
    QString recoveryFile; ///< Of this window; empty until rows had to be kept.
    QString droppedFile; ///< Between its drop and `TimerWBDrop`.
    int menuRow = -1; ///< The row under the last right click.
};

/// Runs when the display loses the focus, and after a load: marks the cleaner's scope as the selected
/// fragment if something is selected.
void NoteSelectionForCleaner(bool somethingSelected);

} // namespace vmk
