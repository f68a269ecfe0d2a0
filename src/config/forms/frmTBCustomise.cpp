#include "frmTBCustomise.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int On = 1;
constexpr QSize FormSize(560, 420);

/// Creates the caption of a list; it is also the accessible name of the list.
QLabel* CaptionOf(QListWidget& list, const QString& text)
{
    auto* label = new QLabel(text, list.parentWidget());
    label->setBuddy(&list);
    list.setAccessibleName(text);
    return label;
}

} // namespace

frmTBCustomise::frmTBCustomise(ClTB& customised, std::function<void()> placeControls, QWidget* owner)
    : QWidget(owner, Qt::Window)
    , toolbar(customised)
    , placeMainControls(std::move(placeControls))
{
    setObjectName(u"frmTBCustomise"_s);
    setWindowTitle(u" Customise Toolbar"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    makeControls();
    layOutControls();
    LoadLVs();
    LVLeftDef = lists.available;
    LVRightDef = lists.shown;
    connectControls();
    resize(FormSize);
}

// ---------------------------------------------------------------- controls

void frmTBCustomise::makeControls()
{
    const auto makeList = [this](const char* name) {
        auto* list = new QListWidget(this);
        list->setObjectName(QLatin1StringView(name));
        if (toolbar.LVImages.size.isValid())
            list->setIconSize(toolbar.LVImages.size);
        return list;
    };
    const auto makeButton = [this](const char* name, const char* caption) {
        auto* button = new QPushButton(QLatin1StringView(caption), this);
        button->setObjectName(QLatin1StringView(name));
        return button;
    };
    const auto makeCombo = [this](const char* name, const QStringList& entries, int current) {
        auto* combo = new QComboBox(this);
        combo->setObjectName(QLatin1StringView(name));
        combo->addItems(entries);
        combo->setCurrentIndex(current == On ? 1 : 0);
        return combo;
    };
    LVLeft = makeList("LVLeft");
    cmdAdd = makeButton("cmdAdd", "Add ->");
    cmdRemove = makeButton("cmdRemove", "<- Remove");
    LVRight = makeList("LVRight");
    cmdUp = makeButton("cmdUp", "Move Up");
    cmdDown = makeButton("cmdDown", "Move Down");
    cmdReset = makeButton("cmdReset", "Reset");
    cmdDefault = makeButton("cmdDefault", "Default");
    CboText = makeCombo("CboText", {u"Show text labels"_s, u"No text"_s}, toolbar.NoText);
    cboImages = makeCombo("cboImages", {u"Small icons"_s, u"Large icons"_s}, toolbar.LargeIcons);
    cmdClose = makeButton("cmdClose", "Save");
}

void frmTBCustomise::layOutControls()
{
    auto* transfer = new QVBoxLayout;
    transfer->addStretch();
    transfer->addWidget(cmdAdd);
    transfer->addWidget(cmdRemove);
    transfer->addStretch();

    auto* side = new QVBoxLayout;
    for (QPushButton* button : {cmdUp, cmdDown})
        side->addWidget(button);
    side->addSpacing(12);
    for (QPushButton* button : {cmdReset, cmdDefault})
        side->addWidget(button);
    side->addStretch();
    side->addWidget(cmdClose);

    auto* textLabel = new QLabel(u"Text options:"_s, this);
    textLabel->setBuddy(CboText);
    CboText->setAccessibleName(u"Text options"_s);
    auto* iconLabel = new QLabel(u"Icon options:"_s, this);
    iconLabel->setBuddy(cboImages);
    cboImages->setAccessibleName(u"Icon options"_s);
    auto* looks = new QGridLayout;
    looks->addWidget(textLabel, 0, 0);
    looks->addWidget(CboText, 0, 1);
    looks->addWidget(iconLabel, 1, 0);
    looks->addWidget(cboImages, 1, 1);
    looks->setColumnStretch(2, 1);

    auto* layout = new QGridLayout(this);
    layout->addWidget(CaptionOf(*LVLeft, u"Available buttons"_s), 0, 0);
    layout->addWidget(CaptionOf(*LVRight, u"Toolbar buttons"_s), 0, 2);
    layout->addWidget(LVLeft, 1, 0);
    layout->addLayout(transfer, 1, 1);
    layout->addWidget(LVRight, 1, 2);
    layout->addLayout(side, 1, 3);
    layout->addLayout(looks, 2, 0, 1, 4);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(2, 1);
}

void frmTBCustomise::connectControls()
{
    connect(LVLeft, &QListWidget::currentRowChanged, this, &frmTBCustomise::enableButtons);
    connect(LVRight, &QListWidget::currentRowChanged, this, &frmTBCustomise::enableButtons);
    connect(LVLeft, &QListWidget::itemDoubleClicked, this, &frmTBCustomise::add);
    connect(LVRight, &QListWidget::itemDoubleClicked, this, &frmTBCustomise::remove);
    connect(cmdAdd, &QPushButton::clicked, this, &frmTBCustomise::add);
    connect(cmdRemove, &QPushButton::clicked, this, &frmTBCustomise::remove);
    connect(cmdUp, &QPushButton::clicked, this, [this] { move(-1); });
    connect(cmdDown, &QPushButton::clicked, this, [this] { move(+1); });
    connect(cmdReset, &QPushButton::clicked, this, &frmTBCustomise::reset);
    connect(cmdDefault, &QPushButton::clicked, this, &frmTBCustomise::takeDefaults);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    connect(CboText, &QComboBox::currentIndexChanged, this, [this](int index) {
        toolbar.NoText = index;
        UpdateTB();
    });
    connect(cboImages, &QComboBox::currentIndexChanged, this, [this](int index) {
        toolbar.LargeIcons = index;
        UpdateTB();
    });
}

// ---------------------------------------------------------------- lists

void frmTBCustomise::LoadLVs()
{
    lists = MakeLists(toolbar.Order(), toolbar.DefButtCount());
    showLists(0, 0);
}

void frmTBCustomise::UpdateTB()
{
    toolbar.ShowOrder(lists.shown);
    placeMainControls();
}

void frmTBCustomise::showLists(int leftRow, int rightRow)
{
    fillList(*LVLeft, lists.available, leftRow);
    fillList(*LVRight, lists.shown, rightRow);
    enableButtons();
}

void frmTBCustomise::fillList(QListWidget& list, const ToolbarOrder& order, int row)
{
    const QSignalBlocker blocker(list);
    list.clear();
    for (const int index : order) {
        const ToolbarButtonSnapshot* button = toolbar.Button(index);
        if (button)
            list.addItem(
                new QListWidgetItem(toolbar.LVImages.images.value(button->BImage - 1), button->BCaption));
        else
            list.addItem(u"   Separator"_s);
    }
    list.setCurrentRow(std::min(row, list.count() - 1));
}

void frmTBCustomise::enableButtons()
{
    const int row = LVRight->currentRow();
    cmdAdd->setEnabled(LVLeft->currentRow() >= 0);
    cmdRemove->setEnabled(row >= 0);
    cmdUp->setEnabled(row > 0);
    cmdDown->setEnabled(row >= 0 && row + 1 < LVRight->count());
}

// ---------------------------------------------------------------- steps

void frmTBCustomise::add()
{
    const int leftRow = LVLeft->currentRow();
    const int row = AddButton(lists, leftRow, LVRight->currentRow());
    if (row < 0)
        return;
    // The row after the new one remains selected, so that several additions keep their order.
    showLists(leftRow, row + 1);
    UpdateTB();
}

void frmTBCustomise::remove()
{
    const int rightRow = LVRight->currentRow();
    if (rightRow < 0)
        return;
    const int leftRow = LVLeft->currentRow();
    const int row = RemoveButton(lists, rightRow);
    showLists(leftRow, row);
    UpdateTB();
}

void frmTBCustomise::move(int step)
{
    const int row = MoveButton(lists, LVRight->currentRow(), step);
    if (row < 0)
        return;
    showLists(LVLeft->currentRow(), row);
    UpdateTB();
}

void frmTBCustomise::reset()
{
    lists = {LVLeftDef, LVRightDef};
    showLists(0, 0);
    UpdateTB();
}

void frmTBCustomise::takeDefaults()
{
    toolbar.LoadDefs();
    LoadLVs();
    placeMainControls();
}

void frmTBCustomise::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vmk
