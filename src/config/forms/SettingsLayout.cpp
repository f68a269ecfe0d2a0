// The controls of the settings dialog and their layout.

#include "SettingsF.h"
#include "SettingsVariables.h"
#include "ShownFont.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Longer than any meaningful value.
constexpr int LongestText = 64;
constexpr QSize SwatchSize(24, 12);
constexpr int PanelWidth = 24;
/// Room for the frame and the cursor of a colour's text field.
constexpr int ColorTextMargin = 20;
/// Free space around the dialog on a small screen.
constexpr int ScreenMargin = 48;

QLabel* MakeLabel(const char* name, const char* text, QWidget& control)
{
    auto* label = new QLabel(QLatin1StringView(text), control.parentWidget());
    label->setObjectName(QLatin1StringView(name));
    label->setBuddy(&control);
    return label;
}

QVBoxLayout* Column(std::initializer_list<QWidget*> widgets)
{
    auto* column = new QVBoxLayout;
    for (QWidget* widget : widgets)
        column->addWidget(widget);
    return column;
}

} // namespace

// ---------------------------------------------------------------- controls

QGroupBox* SettingsF::makeFrame(const char* name, const char* caption)
{
    auto* frame = new QGroupBox(QLatin1StringView(caption), this);
    frame->setObjectName(QLatin1StringView(name));
    return frame;
}

QComboBox* SettingsF::makeList(const char* name, const QStringList& entries)
{
    auto* list = new QComboBox(this);
    list->setObjectName(QLatin1StringView(name));
    list->addItems(entries);
    return list;
}

QLineEdit* SettingsF::makeText(const char* name)
{
    auto* text = new QLineEdit(this);
    text->setObjectName(QLatin1StringView(name));
    text->setMaxLength(LongestText);
    return text;
}

QCheckBox* SettingsF::makeCheck(const char* name, const char* caption)
{
    auto* check = new QCheckBox(QLatin1StringView(caption), this);
    check->setObjectName(QLatin1StringView(name));
    return check;
}

QPushButton* SettingsF::makeButton(const char* name, const char* caption)
{
    auto* button = new QPushButton(QLatin1StringView(caption), this);
    button->setObjectName(QLatin1StringView(name));
    return button;
}

void SettingsF::addRow(QGridLayout& grid, const char* labelName, const char* label, QWidget& control)
{
    const int row = grid.rowCount();
    grid.addWidget(MakeLabel(labelName, label, control), row, 0);
    grid.addWidget(&control, row, 1, 1, 3);
    control.setAccessibleName(QLatin1StringView(label));
}

SettingsF::ColorField SettingsF::addColorRow(QGridLayout& grid, const char* labelName, const char* label,
                                             const char* name)
{
    const QString caption = QLatin1StringView(label);
    const QString base = QLatin1StringView(name);
    ColorField field;
    field.text = makeText(qPrintable(base + u'T'));
    field.text->setAccessibleName(caption);
    field.text->setFixedWidth(fontMetrics().horizontalAdvance(u"#DDDDDD"_s) + ColorTextMargin);
    field.button = makeButton(qPrintable(base + u'P'), "");
    field.button->setIconSize(SwatchSize);
    field.button->setToolTip(u"push to change color"_s);
    field.button->setAccessibleName(u"change "_s + caption);
    field.panel = new QFrame(this);
    field.panel->setObjectName(base + u"P1"_s);
    field.panel->setFrameShape(QFrame::Box);
    field.panel->setAutoFillBackground(true);
    field.panel->setFixedWidth(PanelWidth);
    // The panel has no action, by design.
    field.panel->setToolTip(u"click to change color"_s);

    const int row = grid.rowCount();
    grid.addWidget(MakeLabel(labelName, label, *field.text), row, 0);
    grid.addWidget(field.text, row, 1);
    grid.addWidget(field.button, row, 2);
    grid.addWidget(field.panel, row, 3);
    return field;
}

// ---------------------------------------------------------------- frames

void SettingsF::makeFileFrames()
{
    wFrame6 = makeFrame("wFrame6", "input file");
    InputEncodingL = makeList(
        "InputEncodingL",
        {u"original"_s, u"windows-1251"_s, u"windows-1252"_s, u"windows-1250"_s, u"utf-8"_s, u"unicode"_s});
    NamespaceErrorWarningB = makeCheck("NamespaceErrorWarningB", "namespace error warning");
    auto* input = new QGridLayout(wFrame6);
    addRow(*input, "wCheck16", "encoding", *InputEncodingL);
    input->addWidget(NamespaceErrorWarningB, input->rowCount(), 0, 1, 4);

    wFrame5 = makeFrame("wFrame5", "output file");
    OutputEncodingL = makeList("OutputEncodingL", OutputEncodings);
    OutputStyleL = makeList("OutputStyleL", OutputStyles);
    auto* output = new QGridLayout(wFrame5);
    addRow(*output, "wCheck14", "encoding", *OutputEncodingL);
    addRow(*output, "Check1", "style", *OutputStyleL);
}

void SettingsF::makeTextFrame()
{
    wFrame1 = makeFrame("wFrame1", "text");
    FontsL = makeList("FontsL",
                      {u"Times New Roman"_s, u"Verdana"_s, u"Tahoma"_s, u"Times"_s, u"Lucida Sans Unicode"_s,
                       u"Helvetica"_s, u"Courier New"_s, u"Arial"_s, u"Arial Narrow"_s, u"MS Sans Serif"_s});
    FontsL->setItemDelegate(new FontListDelegate(FontsL));
    FontsL->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    FontsL->setMinimumContentsLength(int(u"Lucida Sans Unicode"_s.size()));
    FontsL->view()->setMinimumWidth(FontsL->view()->sizeHintForColumn(0) + PanelWidth);
    ShownFontL = new QLabel(this);
    ShownFontL->setObjectName(u"ShownFontL"_s);
    FontSizeT = makeText("FontSizeT");
    FontWeightL = makeList("FontWeightL", {u"normal"_s, u"bold"_s});
    TextAlignL = makeList("TextAlignL", {u"left"_s, u"justify"_s});
    LeftMarginT = makeText("LeftMarginT");
    RightMarginT = makeText("RightMarginT");

    auto* grid = new QGridLayout(wFrame1);
    addRow(*grid, "wCheck4", "font", *FontsL);
    grid->addWidget(ShownFontL, grid->rowCount(), 1, 1, 3);
    addRow(*grid, "Check5", "font size", *FontSizeT);
    addRow(*grid, "wCheck3", "font weight", *FontWeightL);
    addRow(*grid, "wCheck6", "text align", *TextAlignL);
    addRow(*grid, "wCheck7", "left margin", *LeftMarginT);
    addRow(*grid, "wCheck8", "right margin", *RightMarginT);
    colorFields[0] = addColorRow(*grid, "wCheck1", "fore color", "ForeColor");
    colorFields[1] = addColorRow(*grid, "wCheck2", "back color", "BackColor");
    ForeColorT = colorFields[0].text;
    ForeColorP = colorFields[0].button;
    ForeColorP1 = colorFields[0].panel;
    BackColorT = colorFields[1].text;
    BackColorP = colorFields[1].button;
    BackColorP1 = colorFields[1].panel;
    grid->setRowStretch(grid->rowCount(), 1);
}

void SettingsF::makeTagFrame()
{
    wFrame2 = makeFrame("wFrame2", "tags");
    auto* grid = new QGridLayout(wFrame2);
    colorFields[2] = addColorRow(*grid, "wCheck10", "tag color", "TagColor");
    colorFields[3] = addColorRow(*grid, "wCheck11", "attr. color", "AttrNameColor");
    colorFields[4] = addColorRow(*grid, "wCheck12", "value color", "AttrValColor");
    TagColorT = colorFields[2].text;
    TagColorP = colorFields[2].button;
    TagColorP1 = colorFields[2].panel;
    AttrNameColorT = colorFields[3].text;
    AttrNameColorP = colorFields[3].button;
    AttrNameColorP1 = colorFields[3].panel;
    AttrValColorT = colorFields[4].text;
    AttrValColorP = colorFields[4].button;
    AttrValColorP1 = colorFields[4].panel;
    TagFontWeightL = makeList("TagFontWeightL", {u"normal"_s, u"bold"_s});
    addRow(*grid, "wCheck13", "font weight", *TagFontWeightL);
    NodeShiftT = makeText("NodeShiftT");
    addRow(*grid, "wCheck9", "node shift", *NodeShiftT);
    TagHighlightingB = makeCheck("TagHighlightingB", "tag highlighting");
    grid->addWidget(TagHighlightingB, grid->rowCount(), 0, 1, 4);
    grid->setRowStretch(grid->rowCount(), 1);
}

void SettingsF::makeOtherControls()
{
    wFrame3 = makeFrame("wFrame3", "view options");
    SetColorsB = makeButton("SetColorsB", "color");
    SetFontB = makeButton("SetFontB", "font");
    SoundsB = makeCheck("SoundsB", "sounds");
    ShowNbspB = makeCheck("ShowNbspB", "show nbsp");
    CommandLineInfoB = makeCheck("CommandLineInfoB", "command-line info");
    PreviewOnChangeB = makeCheck("PreviewOnChangeB", "preview on change");
    SchemaB = makeButton("SchemaB", "schema");
    TreeTagsB = makeButton("TreeTagsB", "in-line tags");
    PreviewB = makeButton("PreviewB", "preview");
    DefaultB = makeButton("DefaultB", "default");
    DeleteIniFile = makeButton("DeleteIniFile", "delete ini");
    ReloadB = makeButton("ReloadB", "reload");
    DoneB = makeButton("DoneB", "done");
}

void SettingsF::layOutFrames()
{
    auto* looks = new QHBoxLayout;
    for (QPushButton* button : {SetFontB, SetColorsB, PreviewB})
        looks->addWidget(button);
    looks->addStretch();
    auto* view = new QGridLayout(wFrame3);
    view->addWidget(wFrame1, 0, 0);
    view->addWidget(wFrame2, 0, 1);
    view->addLayout(looks, 1, 0, 1, 2);

    auto* lists = new QHBoxLayout;
    lists->addWidget(SchemaB);
    lists->addWidget(TreeTagsB);
    QVBoxLayout* left = Column({wFrame6, wFrame5, SoundsB, ShowNbspB, CommandLineInfoB, PreviewOnChangeB});
    left->addLayout(lists);
    left->addStretch();

    auto* content = new QWidget;
    auto* columns = new QHBoxLayout(content);
    columns->addLayout(left);
    columns->addWidget(wFrame3, 1);

    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(DefaultB);
    buttons->addWidget(DeleteIniFile);
    buttons->addStretch();
    buttons->addWidget(ReloadB);
    buttons->addWidget(DoneB);
    buttons->setContentsMargins(9, 0, 9, 9);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    layout->addLayout(buttons);

    // The tab order is the reading order.
    const std::array<QWidget*, 34> order = {InputEncodingL,   NamespaceErrorWarningB,
                                            OutputEncodingL,  OutputStyleL,
                                            SoundsB,          ShowNbspB,
                                            CommandLineInfoB, PreviewOnChangeB,
                                            SchemaB,          TreeTagsB,
                                            FontsL,           FontSizeT,
                                            FontWeightL,      TextAlignL,
                                            LeftMarginT,      RightMarginT,
                                            ForeColorT,       ForeColorP,
                                            BackColorT,       BackColorP,
                                            TagColorT,        TagColorP,
                                            AttrNameColorT,   AttrNameColorP,
                                            AttrValColorT,    AttrValColorP,
                                            TagFontWeightL,   NodeShiftT,
                                            TagHighlightingB, PreviewB,
                                            DefaultB,         DeleteIniFile,
                                            ReloadB,          DoneB};
    for (size_t i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void SettingsF::fitToScreen()
{
    const auto* area = findChild<QScrollArea*>();
    const QSize content = area->widget()->sizeHint();
    const QSize around(0, layout()->itemAt(1)->sizeHint().height() + layout()->spacing());
    // On a screen that is too small the frames scroll; the buttons remain visible.
    const QSize room = screen()->availableSize() - QSize(ScreenMargin, ScreenMargin);
    resize((content + around).boundedTo(room));
}

} // namespace vmk
