#pragma once

#include <QPersistentModelIndex>
#include <QTableView>

namespace vmk {

/// A run of whole rows.
struct RowBlock
{
    int first = -1;
    int count = 0;
};

/// The grid of the clean-up table. A click edits a text or toggles a check box; with Ctrl or Shift it selects
/// whole rows instead.
class CleanUpGrid : public QTableView
{
    Q_OBJECT

public:
    explicit CleanUpGrid(QWidget* parent);

    /// The rows selected as a block; none while a cell is edited or chosen.
    [[nodiscard]] RowBlock Block() const;
    void ClearBlock();
    /// Puts the text of an open editor into the model.
    void CommitEditor();
    /// Makes a cell the current one, in view, and opens its editor.
    void EditCell(int row, int column);
    /// Gives the text columns the width that the check boxes and the scroll bar leave.
    void FitColumns();

Q_SIGNALS:
    /// Tab was pressed in the last cell.
    void rowWanted();
    /// Keys for whole rows.
    void copyWanted();
    void pasteWanted();
    void removeWanted();
    void undoWanted();
    /// The context menu is wanted, at a global position.
    /// \param row  the row under it, -1 for none
    void menuWanted(QPoint at, int row);
    /// A file was dropped.
    void fileDropped(const QString& path);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    bool focusNextPrevChild(bool next) override;

private:
    void selectBlock(int from, int to);
    void extendBlock(int step);
    bool moveByTab(bool forward);
    bool runRowKey(const QKeyEvent& event);

    bool blockStarted = false; ///< One row, chosen with Ctrl, or with Shift where none was.
    bool blockExtended = false; ///< Several rows, chosen with Shift.
    QPersistentModelIndex blockAnchor;
};

} // namespace vmk
