#pragma once

#include "ToolForm.h"

class QGridLayout;
class QLineEdit;
class QPushButton;

namespace vmk {

/// A palette of typographic characters for insertion into the book at the caret or around the selection.
class SpecialCharactersF : public ToolForm
{
    Q_OBJECT

public:
    SpecialCharactersF();

    /// The numbers of the characters that `InsertAsciiB` inserts.
    QLineEdit* AsciiCodeT = nullptr;
    QPushButton* InsertAsciiB = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* addButton(const QString& name, const QString& caption, const QString& toolTip);
    void addWrappingButtons();
    void addSingleButtons();
    void InsertAsciiB_Click();

    QGridLayout* grid = nullptr;
    int buttonCount = 0;
};

} // namespace vmk
