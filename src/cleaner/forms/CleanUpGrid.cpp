#include "CleanUpGrid.h"

#include "CleanUpModel.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr int CheckWidth = 40;
constexpr int RegExpWidth = 50;
constexpr int Margins = 12;
constexpr int SmallestTextWidth = 40;
constexpr float OutlineOpacity = 0.4F;

bool IsText(const QModelIndex& index)
{
    return index.column() == RepWhatColumn || index.column() == RepByColumn;
}

/// Edits texts without a frame, and draws check boxes in the centre of their cells. A click anywhere in the
/// cell, or the space bar, toggles a check box.
class CellDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (IsText(index))
            return QStyledItemDelegate::paint(painter, option, index);
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
        QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

        QStyleOptionButton box;
        box.state = cell.state & (QStyle::State_Enabled | QStyle::State_MouseOver);
        box.state
            |= index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
        const QSize size(style->pixelMetric(QStyle::PM_IndicatorWidth, &box, cell.widget),
                         style->pixelMetric(QStyle::PM_IndicatorHeight, &box, cell.widget));
        box.rect = QStyle::alignedRect(cell.direction, Qt::AlignCenter, size, cell.rect);
        box.palette = cell.palette;
        style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, cell.widget);

        // On a dark desktop some styles draw a box that is not visible on the cell.
        QColor outline = cell.palette.color(QPalette::Text);
        outline.setAlphaF(OutlineOpacity);
        painter->setPen(outline);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(box.rect.adjusted(0, 0, -1, -1));
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex& index) const override
    {
        auto* editor = new QLineEdit(parent);
        editor->setFrame(false);
        editor->setAccessibleName(index.data(Qt::AccessibleTextRole).toString());
        return editor;
    }

    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override
    {
        if (IsText(index))
            return QStyledItemDelegate::editorEvent(event, model, option, index);
        bool toggles = false;
        if (event->type() == QEvent::MouseButtonRelease) {
            const auto& mouse = *static_cast<const QMouseEvent*>(event);
            toggles = mouse.button() == Qt::LeftButton && mouse.modifiers() == Qt::NoModifier
                && option.rect.contains(mouse.position().toPoint());
        } else if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<const QKeyEvent*>(event)->key();
            toggles = key == Qt::Key_Space || key == Qt::Key_Select;
        }
        if (!toggles)
            return false;
        const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, isChecked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }
};

} // namespace

CleanUpGrid::CleanUpGrid(QWidget* parent)
    : QTableView(parent)
{
    setItemDelegate(new CellDelegate(this));
    setSelectionMode(ContiguousSelection);
    setEditTriggers(DoubleClicked | AnyKeyPressed | EditKeyPressed);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setAcceptDrops(true);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setHighlightSections(false);
    // The headers show the menu too. The captions belong to no row.
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(header, &QWidget::customContextMenuRequested, this, [this, header](QPoint at) {
            const int row = header == verticalHeader() ? rowAt(at.y()) : -1;
            Q_EMIT menuWanted(header->mapToGlobal(at), row);
        });
    }
}

void CleanUpGrid::FitColumns()
{
    const int frame = 2 * frameWidth();
    const int available
        = width() - frame - verticalHeader()->width() - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    // With a large font the captions of the check boxes need more than their given width.
    const QFontMetrics metrics(horizontalHeader()->font());
    int checks = 0;
    for (const int column : {CaseColumn, RegExpColumn, EnabledColumn}) {
        const QString caption = model()->headerData(column, Qt::Horizontal).toString();
        const int least = column == RegExpColumn ? RegExpWidth : CheckWidth;
        const int width = std::max(least, metrics.horizontalAdvance(caption) + Margins);
        setColumnWidth(column, width);
        checks += width;
    }
    const int text = std::max((available - checks) / 2 - Margins, SmallestTextWidth);
    setColumnWidth(RepWhatColumn, text);
    setColumnWidth(RepByColumn, text);
}

void CleanUpGrid::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    if (model())
        FitColumns();
}

// ---------------------------------------------------------------- cells and blocks

RowBlock CleanUpGrid::Block() const
{
    if (!blockStarted && !blockExtended)
        return {};
    const QModelIndexList chosen = selectionModel()->selectedRows();
    if (chosen.isEmpty())
        return {};
    const auto [first, last] = std::ranges::minmax(chosen, {}, &QModelIndex::row);
    return {first.row(), last.row() - first.row() + 1};
}

void CleanUpGrid::ClearBlock()
{
    blockStarted = blockExtended = false;
    blockAnchor = QPersistentModelIndex();
}

void CleanUpGrid::CommitEditor()
{
    QWidget* editor = indexWidget(currentIndex());
    if (state() != EditingState)
        return;
    if (!editor)
        editor = viewport()->findChild<QLineEdit*>();
    if (editor) {
        commitData(editor);
        QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void CleanUpGrid::EditCell(int row, int column)
{
    ClearBlock();
    const QModelIndex index = model()->index(row, column);
    if (!index.isValid())
        return;
    setCurrentIndex(index);
    scrollTo(index);
    if (IsText(index))
        edit(index);
}

void CleanUpGrid::selectBlock(int from, int to)
{
    const auto [first, last] = std::minmax(from, to);
    CommitEditor();
    selectionModel()->setCurrentIndex(model()->index(to, 0), QItemSelectionModel::NoUpdate);
    selectionModel()->select({model()->index(first, 0), model()->index(last, CleanUpColumnCount - 1)},
                             QItemSelectionModel::ClearAndSelect);
    scrollTo(model()->index(to, 0));
}

void CleanUpGrid::mousePressEvent(QMouseEvent* event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const bool control = event->modifiers() & Qt::ControlModifier;
    const bool hasBlock = (blockStarted || blockExtended) && blockAnchor.isValid();
    if (event->button() != Qt::LeftButton || !(control || (shift && hasBlock))) {
        if (event->button() == Qt::LeftButton)
            ClearBlock();
        if (event->button() == Qt::RightButton)
            return;
        return QTableView::mousePressEvent(event);
    }
    if (!index.isValid())
        return;
    if (control || !hasBlock) {
        blockAnchor = index.siblingAtColumn(0);
        blockStarted = true;
        blockExtended = false;
        selectBlock(index.row(), index.row());
    } else {
        blockStarted = false;
        blockExtended = true;
        selectBlock(blockAnchor.row(), index.row());
    }
}

void CleanUpGrid::mouseReleaseEvent(QMouseEvent* event)
{
    if (blockStarted || blockExtended)
        return;
    QTableView::mouseReleaseEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() && index == currentIndex() && IsText(index)
        && state() != EditingState)
        edit(index);
}

void CleanUpGrid::mouseMoveEvent(QMouseEvent* event)
{
    // A drag does not select cells.
    if (event->buttons() == Qt::NoButton)
        QTableView::mouseMoveEvent(event);
}

void CleanUpGrid::extendBlock(int step)
{
    const int from = currentIndex().row();
    const int to = std::clamp(from + step, 0, model()->rowCount() - 1);
    if (from < 0)
        return;
    if (!blockAnchor.isValid() || !(blockStarted || blockExtended))
        blockAnchor = model()->index(from, 0);
    blockStarted = false;
    blockExtended = true;
    selectBlock(blockAnchor.row(), to);
}

// ---------------------------------------------------------------- keys

bool CleanUpGrid::runRowKey(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Copy))
        Q_EMIT copyWanted();
    else if (event.matches(QKeySequence::Paste))
        Q_EMIT pasteWanted();
    else if (event.matches(QKeySequence::Undo))
        Q_EMIT undoWanted();
    else if (event.matches(QKeySequence::Delete))
        Q_EMIT removeWanted();
    else
        return false;
    return true;
}

void CleanUpGrid::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex index = currentIndex();
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (runRowKey(*event))
        return;
    if (event->matches(QKeySequence::SelectAll) && model()->rowCount() > 0) {
        blockAnchor = model()->index(0, 0);
        blockExtended = true;
        selectBlock(0, model()->rowCount() - 1);
    } else if (event->modifiers() == Qt::ShiftModifier && event->key() == Qt::Key_Down) {
        extendBlock(1);
    } else if (event->modifiers() == Qt::ShiftModifier && event->key() == Qt::Key_Up) {
        extendBlock(-1);
    } else if (isEnter && state() == EditingState) {
        // The editor has handled the key.
    } else if (isEnter && index.isValid() && IsText(index)) {
        EditCell(index.row(), index.column());
    } else if (event->key() == Qt::Key_Escape) {
        // The form closes.
        event->ignore();
    } else {
        if (!event->text().isEmpty() || (event->key() >= Qt::Key_Left && event->key() <= Qt::Key_Down))
            ClearBlock();
        QTableView::keyPressEvent(event);
    }
}

bool CleanUpGrid::moveByTab(bool forward)
{
    const QModelIndex index = currentIndex();
    if (!index.isValid())
        return false;
    const int cell = index.row() * CleanUpColumnCount + index.column() + (forward ? 1 : -1);
    if (cell < 0)
        return false;
    if (cell == model()->rowCount() * CleanUpColumnCount)
        Q_EMIT rowWanted();
    else
        EditCell(cell / CleanUpColumnCount, cell % CleanUpColumnCount);
    return true;
}

bool CleanUpGrid::focusNextPrevChild(bool next)
{
    return moveByTab(next) || QTableView::focusNextPrevChild(next);
}

void CleanUpGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    const bool moves
        = hint == QAbstractItemDelegate::EditNextItem || hint == QAbstractItemDelegate::EditPreviousItem;
    QTableView::closeEditor(editor, moves ? QAbstractItemDelegate::NoHint : hint);
    if (moves)
        moveByTab(hint == QAbstractItemDelegate::EditNextItem);
}

void CleanUpGrid::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QModelIndex index = currentIndex();
        const QPoint at = index.isValid() ? visualRect(index).center() : QPoint();
        Q_EMIT menuWanted(viewport()->mapToGlobal(at), index.row());
    } else {
        Q_EMIT menuWanted(event->globalPos(), rowAt(event->pos().y()));
    }
}

// ---------------------------------------------------------------- dropped files

void CleanUpGrid::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void CleanUpGrid::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void CleanUpGrid::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    const auto isFile = [](const QUrl& url) { return url.isLocalFile(); };
    const auto file = std::ranges::find_if(urls, isFile);
    if (file == urls.end())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT fileDropped(file->toLocalFile());
}

} // namespace vmk
