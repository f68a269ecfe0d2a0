#include "FbTagListF.h"

#include "Boxes.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "Form1.h"
#include "ListFunctions.h"
#include "StartUpVariables.h"
#include "TagInsertion.h"
#include "TagListLayout.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

} // namespace

FbTagListF::FbTagListF()
    : ToolForm(u"FbTagListF"_s, u" Fiction Book Tags"_s)
{
    TagListLayout design(*this);
    TagListL = design.addList(u"TagListL"_s, u"tags"_s);
    AddTextT = design.addField(u"AddTextT"_s, u"tag to add"_s);
    AddB = design.addFieldButton(u"AddB"_s, u"add"_s);
    CloseTagsB = design.addCheckBox(u"CloseTagsB"_s, u"close tags"_s);
    InsertB = design.addButton(u"InsertB"_s, u"insert"_s);
    RemoveB = design.addButton(u"RemoveB"_s, u"remove"_s);
    DefaultB = design.addButton(u"DefaultB"_s, u"default"_s);
    DoneB = design.addButton(u"DoneB"_s, u"done"_s);
    connect(TagListL, &QListWidget::itemDoubleClicked, this, &FbTagListF::InsertB_Click);
    connect(AddTextT, &QLineEdit::returnPressed, this, &FbTagListF::AddB_Click);
    connect(AddB, &QPushButton::clicked, this, &FbTagListF::AddB_Click);
    connect(InsertB, &QPushButton::clicked, this, &FbTagListF::InsertB_Click);
    connect(RemoveB, &QPushButton::clicked, this, &FbTagListF::RemoveB_Click);
    connect(DefaultB, &QPushButton::clicked, this, &FbTagListF::DefaultB_Click);
    connect(DoneB, &QPushButton::clicked, this, &FbTagListF::DoneB_Click);
}

void FbTagListF::Form_Load()
{
    TagListL->clear();
    TagListL->addItems(ReadTagFile(FbTagsListFile));
    AddTextT->clear();
}

bool FbTagListF::event(QEvent* event)
{
    const bool handled = ToolForm::event(event);
    if (event->type() == QEvent::WindowActivate)
        InsertB->setFocus();
    return handled;
}

void FbTagListF::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && (InsertB->hasFocus() || TagListL->hasFocus()))
        InsertB_Click();
    else
        ToolForm::keyPressEvent(event);
}

bool FbTagListF::writeList()
{
    QStringList lines;
    for (int row = 0; row < TagListL->count(); ++row)
        lines.append(TagListL->item(row)->text());
    QStringList kept;
    if (WriteTagFile(lines, FbTagsListFile, kept))
        return true;
    StopBox(u"cannot write file: "_s + FbTagsListFile);
    return false;
}

void FbTagListF::AddB_Click()
{
    const QString tag = AddTextT->text().trimmed();
    if (!tag.isEmpty() && TagListL->findItems(tag, Qt::MatchFixedString | Qt::MatchCaseSensitive).isEmpty()) {
        TagListL->addItem(tag);
        TagListL->scrollToBottom();
    }
    AddTextT->clear();
    AddTextT->setFocus();
}

void FbTagListF::RemoveB_Click()
{
    qDeleteAll(TagListL->selectedItems());
}

void FbTagListF::DefaultB_Click()
{
    TagListL->clear();
    TagListL->addItems(DefaultFbTags());
    writeList();
}

void FbTagListF::DoneB_Click()
{
    // If the list could not be written, the window keeps it.
    if (writeList())
        close();
}

void FbTagListF::InsertB_Click()
{
    const QList<QListWidgetItem*> selected = TagListL->selectedItems();
    DisplayView& display = *Form1::Instance()->HTMLread;
    if (!selected.isEmpty() && display.designMode() == "On"_L1)
        InsertTagFromList(display.document(), selected.first()->text(), CloseTagsB->isChecked(),
                          TagPaint::Of(DisplayValuesOfSettings()));
}

} // namespace vmk
