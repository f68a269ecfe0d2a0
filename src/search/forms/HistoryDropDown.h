#pragma once

#include <QListView>
#include <QStringListModel>

namespace vmk {

/// The drop-down list of an input field with the texts used last. It is a child of the window. It requests to
/// be closed after a choice, on Escape, when it loses the focus, and when the pointer, after it was inside,
/// leaves over the upper or left edge.
class HistoryDropDown : public QListView
{
    Q_OBJECT

public:
    explicit HistoryDropDown(QWidget* parent);

    void setEntries(const QStringList& entries) { model.setStringList(entries); }
    [[nodiscard]] QStringList entries() const { return model.stringList(); }
    /// Opens the list and sets the focus to it.
    /// \param geometry  in coordinates of the parent
    void open(const QRect& geometry);
    /// Returns the row of the last right click, or -1.
    [[nodiscard]] int clickedRow() const { return menuRow; }

Q_SIGNALS:
    void chosen(const QString& entry);
    /// \param refocus  the focus returns to the field
    void closeRequested(bool refocus);
    void menuRequested(const QPoint& globalPosition);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void choose(const QModelIndex& index);

    QStringListModel model;
    bool pointerSeen = false;
    int menuRow = -1;
};

} // namespace vmk
