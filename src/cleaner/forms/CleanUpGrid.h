#pragma once

#include <QPersistentModelIndex>
#include <QTableView>

namespace vmk {

/// A range of whole rows.
struct RowBlock
{
    int first = -1;
    int count = 0;
};

/// The grid of the clean-up table. A click edits a text or toggles a check box. A click with Ctrl or Shift
/// selects whole rows.
class CleanUpGrid : public QTableView
{
    Q_OBJECT

public:
    explicit CleanUpGrid(QWidget* parent);

    /// Returns the rows that are selected as a block; none while a single cell is selected or edited.
    [[nodiscard]] RowBlock Block() const;
    void ClearBlock();
    /// Writes the text of an open editor to the model and closes the editor.
    void CommitEditor();
    /// Selects a cell, scrolls to it, and opens its editor if it contains text.
    void EditCell(int row, int column);
    /// Divides the width that the check boxes and the scroll bar leave between the text columns.
    void FitColumns();

Q_SIGNALS:
    /// Tab was pressed in the last cell.
    void rowWanted();
    /// A key for whole rows was pressed.
    void copyWanted();
    void pasteWanted();
    void removeWanted();
    void undoWanted();
    /// The context menu was requested, at a global position.
    /// \param row  the row at this position, -1 for none
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

    bool blockStarted = false; ///< The block is one row, selected with Ctrl.
    bool blockExtended = false; ///< The block was extended with Shift.
    QPersistentModelIndex blockAnchor;
};

} // namespace vmk
