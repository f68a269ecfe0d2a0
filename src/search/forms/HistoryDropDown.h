#pragma once

#include <QListView>
#include <QStringListModel>

namespace vmk {

/// The list that drops down from an input field: the texts used last. It opens in the window itself, and
/// closes on a choice, on Escape, when the focus goes elsewhere, and when the pointer, once it was inside,
/// leaves over its upper or left edge.
class HistoryDropDown : public QListView
{
    Q_OBJECT

public:
    explicit HistoryDropDown(QWidget* parent);

    void setEntries(const QStringList& entries) { model.setStringList(entries); }
    [[nodiscard]] QStringList entries() const { return model.stringList(); }
    /// Opens at a place of the parent and takes the focus.
    void open(const QRect& place);
    /// The row that the last right click was on, -1 for none.
    [[nodiscard]] int clickedRow() const { return menuRow; }

Q_SIGNALS:
    void chosen(const QString& entry);
    /// \param refocus the field is to have the focus again
    void closeWanted(bool refocus);
    void menuWanted(const QPoint& globalPlace);

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
