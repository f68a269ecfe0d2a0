#pragma once

#include <QString>

class QBoxLayout;
class QCheckBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QWidget;

namespace vmk {

/// The common layout of the windows with a list of tags: the list, below it a field with its button, and a
/// row of buttons. The tab order is the order in which the controls are added.
class TagListLayout
{
public:
    explicit TagListLayout(QWidget& ofForm);

    /// \param label  the accessible name of the control
    [[nodiscard]] QListWidget* addList(const QString& name, const QString& label);
    [[nodiscard]] QLineEdit* addField(const QString& name, const QString& label);
    [[nodiscard]] QPushButton* addFieldButton(const QString& name, const QString& caption);
    [[nodiscard]] QCheckBox* addCheckBox(const QString& name, const QString& caption);
    [[nodiscard]] QPushButton* addButton(const QString& name, const QString& caption);

private:
    QWidget& form;
    QBoxLayout* all;
    QBoxLayout* fieldRow = nullptr;
    QBoxLayout* buttonRow = nullptr;
};

} // namespace vmk
