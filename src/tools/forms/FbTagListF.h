#pragma once

#include "ToolForm.h"

class QCheckBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace vmk {

/// The user's list of tags for insertion into the book at the caret or around the selection. "done" and
/// "default" write its file.
class FbTagListF : public ToolForm
{
    Q_OBJECT

public:
    FbTagListF();

    QListWidget* TagListL = nullptr;
    QLineEdit* AddTextT = nullptr;
    QPushButton* AddB = nullptr;
    QPushButton* RemoveB = nullptr;
    QPushButton* DefaultB = nullptr;
    QPushButton* DoneB = nullptr;
    QPushButton* InsertB = nullptr;
    QCheckBox* CloseTagsB = nullptr;

protected:
    void Form_Load() override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void AddB_Click();
    void RemoveB_Click();
    void DefaultB_Click();
    void DoneB_Click();
    void InsertB_Click();
    /// Writes the list to its file. \return false, after a box, if it could not be written
    bool writeList();
};

} // namespace vmk
