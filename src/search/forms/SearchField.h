#pragma once

#include <QLineEdit>

namespace vmk {

/// An input field of the find window. It keeps every character, including line breaks, and shows all on one
/// line.
class SearchField : public QLineEdit
{
    Q_OBJECT

public:
    explicit SearchField(QWidget* parent);

    /// The maximum number of characters of a paste; typing is not limited.
    static constexpr qsizetype MostPasted = 50;

    /// Replaces the text of the field, as one undo step.
    void Fill(const QString& newText);
    /// Replaces the selected text of the field, or inserts at the caret.
    /// \param clearFirst  replaces the whole text of the field instead
    /// \param pasted      empty for the text of the clipboard without its line ends; only the first
    /// `MostPasted`
    ///                    characters are used
    void PasteIntoBox(bool clearFirst, const QString& pasted = {});
    /// Deletes the text, or only its selection.
    void ClearBox(bool onlySelection);

Q_SIGNALS:
    void findKey(); ///< F3 was released.
    void replaceKey(); ///< F4 was released.
    void dropDownKey(); ///< Down was pressed.
    void mousePressed();
    void menuRequested(const QPoint& globalPosition);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// The find key that was pressed in this field. A key pressed elsewhere has no effect when it is released
    /// here.
    int pressedKey = 0;
};

} // namespace vmk
