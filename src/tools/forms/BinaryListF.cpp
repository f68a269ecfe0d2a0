#include "BinaryListF.h"

#include "BinaryElements.h"
#include "BookVariables.h"
#include "CodePages.h"
#include "FileOperations.h"
#include "ImageFunctions.h"
#include "MainWindowSeams.h"
#include "StartUpVariables.h"
#include "TagFunctions.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize FormSize(560, 320);

} // namespace

BinaryListF::BinaryListF()
    : ToolForm(u"BinaryListF"_s, u" Binary Resources"_s)
{
    TagListF = new QListWidget(this);
    TagListF->setObjectName(u"TagListF"_s);
    TagListF->setAccessibleName(u"binary resources"_s);
    TagListF->setUniformItemSizes(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(TagListF);
    resize(FormSize);
    connect(TagListF, &QListWidget::itemClicked, this, &BinaryListF::TagListF_Click);
}

void BinaryListF::fillList(const std::function<void(qsizetype)>& progress)
{
    TagListF->clear();
    tags.clear();
    const int codePage = BinaryCodePage;
    QStringList lines;
    size_t position = 0;
    for (int round = 0; round < MostBinaryElements && !BinaryPart.empty(); ++round) {
        progress(lines.size() + 1);
        const std::optional<BinaryTag> tag = NextBinaryTag(BinaryPart, position);
        if (!tag)
            break;
        tags.emplace_back(tag->tag);
        lines += DecodeBytes(tag->tag, codePage);
        position = tag->end;
    }
    TagListF->addItems(lines);
}

void BinaryListF::GetBinaryTags()
{
    // The text is that of the extraction, by design.
    fillList([](qsizetype number) { ShowStatus(u"...extracting images..."_s + QString::number(number)); });
    if (tags.empty())
        return;
    ShowForm();
    TagListF->setFocus();
}

void BinaryListF::BinaryPartChanged()
{
    if (isVisible())
        fillList([](qsizetype) {});
}

void BinaryListF::TagListF_Click()
{
    const int row = TagListF->currentRow();
    if (row < 0 || row >= int(tags.size()) || !IsPictureTag(tags[size_t(row)]))
        return;
    const std::string id = GetXmlAttribute(tags[size_t(row)], "id", true);
    if (!id.empty())
        ExtractAndShowImage(id);
}

void BinaryListF::ExtractAndShowImage(const std::string& id)
{
    const HourglassScope hourglass;
    ShowPicture(id, OtherContent::Ignore);
}

void BinaryListF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        TagListF_Click();
    else
        ToolForm::keyPressEvent(event);
}

void BinaryListF::Form_Unload()
{
    FileOperation(DeleteFolderMode, TempImagesFolder);
    SetPointer(Pointer::Default);
}

} // namespace vmk
