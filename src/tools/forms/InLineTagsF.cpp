#include "InLineTagsF.h"

#include "Boxes.h"
#include "FileOperations.h"
#include "InitGlobals.h"
#include "ListFunctions.h"
#include "StartUpVariables.h"
#include "TagListLayout.h"
#include "TreeLines.h"

#include <QEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Makes `tags` the current list and writes its file; an empty list deletes the file.
/// \return false, after a box, if the file could not be written
bool UseTags(const QStringList& tags)
{
    InLineTags = tags;
    InLineTagCount = int(tags.size());
    QStringList kept;
    if (tags.isEmpty()) {
        FileOperation(DeleteFileMode, InLineTagsFile);
    } else if (!WriteTagFile(tags, InLineTagsFile, kept)) {
        StopBox(u"cannot write file: "_s + InLineTagsFile);
        return false;
    }
    // The list has the form that it has after a start.
    ReadInLineTags();
    return true;
}

} // namespace

InLineTagsF::InLineTagsF()
    : ToolForm(u"InLineTagsF"_s, u" InLine Tags"_s)
{
    TagListLayout design(*this);
    InLineListL = design.addList(u"InLineListL"_s, u"in-line tags"_s);
    InLineListL->setSelectionMode(QAbstractItemView::ExtendedSelection);
    AddTextT = design.addField(u"AddTextT"_s, u"tag to add"_s);
    AddB = design.addFieldButton(u"AddB"_s, u"add"_s);
    RemoveB = design.addButton(u"RemoveB"_s, u"remove"_s);
    DefaultB = design.addButton(u"DefaultB"_s, u"default"_s);
    DoneB = design.addButton(u"DoneB"_s, u"done"_s);
    InLineListL->viewport()->installEventFilter(this);
    connect(AddTextT, &QLineEdit::returnPressed, this, &InLineTagsF::AddTextT_Enter);
    connect(AddB, &QPushButton::clicked, this, &InLineTagsF::AddB_Click);
    connect(RemoveB, &QPushButton::clicked, this, &InLineTagsF::RemoveB_Click);
    connect(DefaultB, &QPushButton::clicked, this, &InLineTagsF::DefaultB_Click);
    connect(DoneB, &QPushButton::clicked, this, &InLineTagsF::DoneB_Click);
}

void InLineTagsF::Form_Load()
{
    fillList();
    AddTextT->clear();
    AddTextT->setEnabled(false);
}

void InLineTagsF::fillList()
{
    InLineListL->clear();
    for (const QString& tag : std::as_const(InLineTags)) {
        if (!tag.trimmed().isEmpty())
            InLineListL->addItem(tag);
    }
}

void InLineTagsF::addTag()
{
    const QString tag = InLineTagOf(AddTextT->text());
    if (!tag.isEmpty()
        && InLineListL->findItems(tag, Qt::MatchFixedString | Qt::MatchCaseSensitive).isEmpty()) {
        InLineListL->addItem(tag);
        InLineListL->scrollToBottom();
    }
    AddTextT->clear();
}

void InLineTagsF::AddB_Click()
{
    if (AddTextT->isEnabled())
        addTag();
    AddTextT->setEnabled(true);
    AddTextT->setFocus();
}

void InLineTagsF::AddTextT_Enter()
{
    addTag();
    // Disabling a field that has the focus would move the focus to the next control.
    AddB->setFocus();
    AddTextT->setEnabled(false);
}

void InLineTagsF::RemoveB_Click()
{
    AddTextT->setEnabled(false);
    qDeleteAll(InLineListL->selectedItems());
}

void InLineTagsF::DefaultB_Click()
{
    AddTextT->setEnabled(false);
    (void)UseTags(DefaultInLineTags());
    fillList();
}

void InLineTagsF::DoneB_Click()
{
    QStringList tags;
    for (int row = 0; row < InLineListL->count(); ++row) {
        if (const QString tag = InLineListL->item(row)->text().trimmed(); !tag.isEmpty())
            tags.append(tag);
    }
    // If the list could not be written, the window keeps it.
    if (UseTags(tags))
        close();
}

bool InLineTagsF::eventFilter(QObject* watched, QEvent* event)
{
    // A click anywhere in the list ends the input of a tag.
    if (event->type() == QEvent::MouseButtonPress)
        AddTextT->setEnabled(false);
    return ToolForm::eventFilter(watched, event);
}

} // namespace vmk
