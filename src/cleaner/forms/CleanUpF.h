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
/// A second after each change, unsaved rows are written to a recovery copy in `UserCleanUpFolder`, so that
/// closing the window or loading another table does not lose them.
class CleanUpF : public QWidget
{
    Q_OBJECT

public:
    /// The parts of the program that the window uses.
    struct Context
    {
        QWidget* owner = nullptr;
        DisplayView* display = nullptr;
        std::function<void()> openFragmentEditor;
    };

    /// Opens the window, or raises the open one.
    static void Open(const Context& context);
    /// Returns the open window; null if there is none.
    [[nodiscard]] static CleanUpF* Instance();

    ~CleanUpF() override;

    // ---- the file

    void SaveCleanUpFile();
    /// Reads `CurrentCleanUpFile`. Reports a bad signature in a box.
    /// \return false if the file is missing or has a bad signature; the rows are unchanged then
    bool ReadCleanUpFile();
    void SaveCleanUpFileAs();
    void LoadCleanUpFile();
    void DeleteCleanUpFiles();
    void ReloadCleanUpFile();

    // ---- the table

    /// The position of a new row.
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

    /// Applies the table to the book.
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
    QString recoveryFile; ///< The recovery copy of this window; empty until one was written.
    QString droppedFile; ///< Set from a drop until `TimerWBDrop`.
    int menuRow = -1; ///< The row under the last right click; -1 for none.
};

/// Sets the scope of the open cleaner to the selected fragment if something is selected. Called when the
/// display loses the focus, and after a table was loaded.
void NoteSelectionForCleaner(bool somethingSelected);

} // namespace vmk
