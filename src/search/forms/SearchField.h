#pragma once

#include <QLineEdit>

namespace vmk {

/// An input field of the find window. It keeps every character as it is, line breaks included, and shows
/// them all on one line.
class SearchField : public QLineEdit
{
    Q_OBJECT

public:
    explicit SearchField(QWidget* parent);

    /// Programs put in no more characters than this; typing is not limited.
    static constexpr qsizetype MostPasted = 50;

    /// Puts a text in the place of all that is in the field, as one step of its undo.
    void Fill(const QString& newText);
    /// Puts a text at the caret, in the place of what is selected.
    /// \param clearFirst in the place of the whole field's text instead
    /// \param pasted empty for the clipboard's text, without its line ends; at most `MostPasted` characters
    ///     of it are taken
    void PasteIntoBox(bool clearFirst, const QString& pasted = {});
    /// Deletes the text, or what is selected.
    void ClearBox(bool onlySelection);

Q_SIGNALS:
    void findKey(); ///< F3, when the key is let go
    void replaceKey(); ///< F4
    void dropDownKey(); ///< Down
    void mousePressed();
    void menuWanted(const QPoint& globalPlace);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// The find key that was pressed here; one pressed elsewhere is not this field's when it is let go.
    int pressedKey = 0;
};

} // namespace vmk
