#pragma once

#include "ToolForm.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace vmk {

/// Edits the list of the in-line tags: when a book is loaded, no line is broken around them. "done" applies
/// the changes; "default" writes its list immediately.
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
    bool eventFilter(QObject* watched, QEvent* event) override;

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
