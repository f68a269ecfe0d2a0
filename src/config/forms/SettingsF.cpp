#include "SettingsF.h"

#include "BookSeams.h"
#include "BookVariables.h"
#include "ColorsF1.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Form1.h"
#include "PreviewF.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "ShownFont.h"
#include "StartUpVariables.h"
#include "StyleSheet.h"
#include "WindowFunctions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QIconEngine>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr bool ByForce = true;
constexpr int CentreOfReference = 14;
constexpr int BesideReference = 0;

QPointer<SettingsF> TheSettings;
QPointer<ColorsF1> ThePalette;

/// Selects an entry. A value that is not in the list is added, so that `DoneB` does not change it.
void SelectEntry(QComboBox& list, const QString& text)
{
    int row = list.findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (row < 0 && !text.isEmpty()) {
        list.addItem(text);
        row = list.count() - 1;
    }
    list.setCurrentIndex(row);
}

/// Returns the colour that the display uses for a text; invalid if it is not a colour.
QColor ColorOf(const QString& text)
{
    return ParseColor(text).value_or(QColor());
}

/// A rectangle of a colour with a border, sharp at any scale. It is painted each time: the toolkit would keep
/// a pixmap of every icon that a settings window has had.
class Swatch final : public QIconEngine
{
public:
    Swatch(const QColor& swatchColor, const QColor& borderColor)
        : color(swatchColor)
        , border(borderColor)
    {
    }

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State) override
    {
        if (mode == QIcon::Disabled)
            painter->setOpacity(0.5);
        painter->fillRect(area, color.isValid() ? color : Qt::transparent);
        painter->setPen(border);
        painter->drawRect(area.adjusted(0, 0, -1, -1));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, picture.rect(), mode, state);
        return picture;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new Swatch(color, border); }

private:
    QColor color;
    QColor border;
};

} // namespace

SettingsF::SettingsF(Form1& mainForm)
    : QWidget(&mainForm, Qt::Window)
    , form(mainForm)
{
    setObjectName(u"SettingsF"_s);
    setWindowTitle(u" Settings"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    makeFileFrames();
    makeTextFrame();
    makeTagFrame();
    makeOtherControls();
    layOutFrames();
    connectControls();
    connectPreviews();
    TheSettings = this;
    seams.fill(PreviewValuesSeam(), [this] { return PreviewDisplayValues(values()); });
    FillSettingsControls();
    fitToScreen();
    PlaceFormBeside(*this, form, CentreOfReference, 0, 0);
}

SettingsF::~SettingsF() = default;

SettingsF* SettingsF::Existing()
{
    return TheSettings;
}

void SettingsF::Show(Form1& mainForm)
{
    SettingsF* settings = TheSettings ? TheSettings.data() : new SettingsF(mainForm);
    settings->show();
    settings->raise();
    settings->activateWindow();
}

void SettingsF::Unload()
{
    if (TheSettings)
        TheSettings->close();
}

// ---------------------------------------------------------------- controls and settings

void SettingsF::FillSettingsControls()
{
    SettingsLoading = 1;
    const SettingsValues stored = ValuesOfSettings();
    SelectEntry(*InputEncodingL, stored.inputEncoding);
    NamespaceErrorWarningB->setChecked(stored.namespaceErrorWarning);
    SelectEntry(*OutputEncodingL, stored.outputEncoding);
    SelectEntry(*OutputStyleL, stored.outputStyle);
    SelectEntry(*FontsL, stored.fontName);
    FontSizeT->setText(stored.fontSize);
    SelectEntry(*FontWeightL, stored.fontWeight);
    SelectEntry(*TextAlignL, stored.textAlign);
    LeftMarginT->setText(stored.leftMargin);
    RightMarginT->setText(stored.rightMargin);
    ForeColorT->setText(stored.foreColor);
    BackColorT->setText(stored.backColor);
    TagColorT->setText(stored.tagColor);
    AttrNameColorT->setText(stored.attrNameColor);
    AttrValColorT->setText(stored.attrValColor);
    SelectEntry(*TagFontWeightL, stored.tagFontWeight);
    NodeShiftT->setText(stored.nodeShift);
    TagHighlightingB->setChecked(stored.tagHighlighting);
    SoundsB->setChecked(stored.sounds);
    ShowNbspB->setChecked(stored.showNbsp);
    CommandLineInfoB->setChecked(stored.commandLineInfo);
    PreviewOnChangeB->setChecked(stored.previewOnChange);
    showShownFont();
    showSwatches();
    // A window that is already active receives no further activation event.
    if (isVisible())
        SettingsLoading = 0;
}

SettingsValues SettingsF::values() const
{
    SettingsValues held;
    held.inputEncoding = InputEncodingL->currentText();
    held.namespaceErrorWarning = NamespaceErrorWarningB->isChecked();
    held.outputEncoding = OutputEncodingL->currentText();
    held.outputStyle = OutputStyleL->currentText();
    held.fontName = FontsL->currentText();
    held.fontSize = FontSizeT->text();
    held.fontWeight = FontWeightL->currentText();
    held.textAlign = TextAlignL->currentText();
    held.leftMargin = LeftMarginT->text();
    held.rightMargin = RightMarginT->text();
    held.foreColor = ForeColorT->text();
    held.backColor = BackColorT->text();
    held.tagColor = TagColorT->text();
    held.attrNameColor = AttrNameColorT->text();
    held.attrValColor = AttrValColorT->text();
    held.tagFontWeight = TagFontWeightL->currentText();
    held.nodeShift = NodeShiftT->text();
    held.tagHighlighting = TagHighlightingB->isChecked();
    held.sounds = SoundsB->isChecked();
    held.showNbsp = ShowNbspB->isChecked();
    held.commandLineInfo = CommandLineInfoB->isChecked();
    held.previewOnChange = PreviewOnChangeB->isChecked();
    return held;
}

void SettingsF::ReadSettingsControls()
{
    TakeSettings(values());
}

void SettingsF::SetDefaultSettings()
{
    SetRecordDefaults();
    // The main window shows the schema settings.
    form.UseSchema(SchemaFile);
    FillSettingsControls();
}

// ---------------------------------------------------------------- events

void SettingsF::connectControls()
{
    connect(DoneB, &QPushButton::clicked, this, &SettingsF::done);
    connect(ReloadB, &QPushButton::clicked, this, &SettingsF::reload);
    connect(DefaultB, &QPushButton::clicked, this, &SettingsF::takeDefaults);
    connect(DeleteIniFile, &QPushButton::clicked, this, &SettingsF::deleteIniFile);
    connect(PreviewB, &QPushButton::clicked, this, [] { ShowFb2TextPreview(ByForce); });
    connect(SchemaB, &QPushButton::clicked, this, [this] { form.RunCommand(Command::ShowSchema); });
    connect(TreeTagsB, &QPushButton::clicked, this, [this] { form.RunCommand(Command::InLineTags); });
    TreeTagsB->setEnabled(ProcedureOf(Command::InLineTags));
    // These buttons have no action, by design.
    SetColorsB->setEnabled(false);
    SetFontB->setEnabled(false);
    for (size_t field = 0; field < colorFields.size(); ++field) {
        connect(colorFields[field].button, &QPushButton::clicked, this,
                [this, field] { openPalette(int(field)); });
        connect(colorFields[field].text, &QLineEdit::textChanged, this, &SettingsF::showSwatches);
    }
    connect(FontsL, &QComboBox::currentTextChanged, this, &SettingsF::showShownFont);
}

void SettingsF::connectPreviews()
{
    const auto showPreview = [] { ShowFb2TextPreview(!ByForce); };
    for (const QComboBox* list : {FontsL, FontWeightL, TextAlignL, TagFontWeightL})
        connect(list, &QComboBox::currentTextChanged, this, showPreview);
    for (const QLineEdit* text : {FontSizeT, LeftMarginT, RightMarginT, NodeShiftT})
        connect(text, &QLineEdit::textChanged, this, showPreview);
    connect(TagHighlightingB, &QCheckBox::toggled, this, showPreview);
}

void SettingsF::done()
{
    ReadSettingsControls();
    close();
}

void SettingsF::reload()
{
    ReadSettingsControls();
    LoadBook(CurrentBook, false);
    close();
}

void SettingsF::takeDefaults()
{
    SetDefaultSettings();
    ShowFb2TextPreview(ByForce);
}

void SettingsF::deleteIniFile()
{
    // The variables are unchanged, and the end of the program writes the file again, by design.
    FileOperation(DeleteFileMode, IniFilePath);
    Form1& mainForm = form;
    close();
    mainForm.ReloadForm1();
}

bool SettingsF::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        SettingsLoading = 0;
    return QWidget::event(event);
}

void SettingsF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void SettingsF::closeEvent(QCloseEvent* event)
{
    PreviewF::Unload();
    if (ThePalette)
        ThePalette->close();
    if (TheSettings == this)
        TheSettings.clear();
    seams.release();
    QWidget::closeEvent(event);
}

// ---------------------------------------------------------------- colours and fonts

void SettingsF::openPalette(int field)
{
    // A closed form is about to be deleted.
    if (!ThePalette || !ThePalette->isVisible()) {
        ThePalette = new ColorsF1(*this);
        PlaceFormBeside(*ThePalette, *this, BesideReference, 0, 0);
    }
    ThePalette->SetField(ColorNames.at(field));
    ThePalette->show();
    ThePalette->raise();
    ThePalette->activateWindow();
}

void SettingsF::TakeColor(int field, const QString& color)
{
    if (field < 0 || field >= int(colorFields.size()))
        return;
    colorFields[size_t(field)].text->setText(color);
    ShowFb2TextPreview(!ByForce);
}

void SettingsF::showSwatches()
{
    const QColor border = palette().color(QPalette::WindowText);
    for (const ColorField& field : colorFields) {
        const QColor color = ColorOf(field.text->text());
        field.button->setIcon(QIcon(new Swatch(color, border)));
        QPalette panel = palette();
        panel.setColor(QPalette::Window, color.isValid() ? color : palette().color(QPalette::Window));
        field.panel->setPalette(panel);
    }
}

void SettingsF::showShownFont()
{
    const QString shown = FontShownFor(FontsL->currentText());
    ShownFontL->setText(shown.isEmpty() ? QString() : u"shown as "_s + shown);
}

} // namespace vmk
