#pragma once

#include "ToolForm.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace vmk {

/// Edits the list of the tags that count as in-line: no line is broken around them when a book is loaded.
/// What was changed is taken over by "done" alone; "default" writes the list at once.
class InLineTagsF : public ToolForm
{
    Q_OBJECT

public:
    InLineTagsF();

    QListWidget* InLineListL = nullptr;
    QLineEdit* AddTextT = nullptr;
    QPushButton* AddB = nullptr;
    QPushButton* RemoveB = nullptr;
    QPushButton* DefaultB = nullptr;
    QPushButton* DoneB = nullptr;

protected:
    void Form_Load() override;

private:
    void AddB_Click();
    void AddTextT_Enter();
    void RemoveB_Click();
    void DefaultB_Click();
    void DoneB_Click();
    void addTag();
    void fillList();
};

} // namespace vmk
