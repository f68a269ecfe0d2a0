#include "TagListLayout.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace vmk {
namespace {

constexpr int FormWidth = 340;
constexpr int FormHeight = 400;

QPushButton* MakeButton(const QString& name, const QString& caption)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    return button;
}

} // namespace

TagListLayout::TagListLayout(QWidget& ofForm)
    : form(ofForm)
    , all(new QVBoxLayout(&ofForm))
{
    form.resize(FormWidth, FormHeight);
}

QListWidget* TagListLayout::addList(const QString& name, const QString& label)
{
    auto* list = new QListWidget;
    list->setObjectName(name);
    list->setAccessibleName(label);
    all->addWidget(list);
    fieldRow = new QHBoxLayout;
    all->addLayout(fieldRow);
    buttonRow = new QHBoxLayout;
    all->addLayout(buttonRow);
    return list;
}

QLineEdit* TagListLayout::addField(const QString& name, const QString& label)
{
    auto* field = new QLineEdit;
    field->setObjectName(name);
    field->setAccessibleName(label);
    field->setPlaceholderText(label);
    fieldRow->addWidget(field);
    return field;
}

QPushButton* TagListLayout::addFieldButton(const QString& name, const QString& caption)
{
    QPushButton* button = MakeButton(name, caption);
    fieldRow->addWidget(button);
    return button;
}

QCheckBox* TagListLayout::addCheckBox(const QString& name, const QString& caption)
{
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    all->insertWidget(all->indexOf(buttonRow), box);
    return box;
}

QPushButton* TagListLayout::addButton(const QString& name, const QString& caption)
{
    QPushButton* button = MakeButton(name, caption);
    buttonRow->addWidget(button);
    return button;
}

} // namespace vmk
