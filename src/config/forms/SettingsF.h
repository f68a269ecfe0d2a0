#pragma once

#include "Seam.h"
#include "SettingsValues.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;
class QFrame;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vmk {

class ColorsF1;
class Form1;

/// The settings dialog. It changes only its own controls. `DoneB` and `ReloadB` apply them to the settings;
/// `DefaultB` sets all settings immediately.
class SettingsF : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsF(Form1& mainForm);
    ~SettingsF() override;

    /// Returns the dialog; null if it is not loaded.
    [[nodiscard]] static SettingsF* Existing();
    /// Loads the dialog, or raises the loaded one.
    static void Show(Form1& mainForm);
    /// Closes the dialog with its windows, if it is loaded.
    static void Unload();

    /// Fills the controls from the settings. A value that is not in its list is added to the list.
    void FillSettingsControls();
    /// Sets all settings to their defaults and fills the controls.
    void SetDefaultSettings();
    /// Applies the controls to the settings.
    void ReadSettingsControls();
    /// Returns the values in the controls.
    [[nodiscard]] SettingsValues values() const;

    /// Sets a colour field, and shows the preview without force.
    /// \param field  index in `ColorNames`; other numbers have no effect
    void TakeColor(int field, const QString& color);

    /// Not 0 while the controls are filled and until the window is active. No preview is shown in that time.
    int16_t SettingsLoading = 0;

    // ---- controls

    QGroupBox* wFrame6 = nullptr;
    QComboBox* InputEncodingL = nullptr;
    QCheckBox* NamespaceErrorWarningB = nullptr;

    QGroupBox* wFrame5 = nullptr;
    QComboBox* OutputEncodingL = nullptr;
    QComboBox* OutputStyleL = nullptr;

    QGroupBox* wFrame3 = nullptr;
    QGroupBox* wFrame1 = nullptr;
    QComboBox* FontsL = nullptr;
    /// The font that the display uses instead of the selected one; empty if the system has the selected one.
    QLabel* ShownFontL = nullptr;
    QLineEdit* FontSizeT = nullptr;
    QComboBox* FontWeightL = nullptr;
    QComboBox* TextAlignL = nullptr;
    QLineEdit* LeftMarginT = nullptr;
    QLineEdit* RightMarginT = nullptr;
    QLineEdit *ForeColorT = nullptr, *BackColorT = nullptr;
    QPushButton *ForeColorP = nullptr, *BackColorP = nullptr;
    QFrame *ForeColorP1 = nullptr, *BackColorP1 = nullptr;

    QGroupBox* wFrame2 = nullptr;
    QLineEdit *TagColorT = nullptr, *AttrNameColorT = nullptr, *AttrValColorT = nullptr;
    QPushButton *TagColorP = nullptr, *AttrNameColorP = nullptr, *AttrValColorP = nullptr;
    QFrame *TagColorP1 = nullptr, *AttrNameColorP1 = nullptr, *AttrValColorP1 = nullptr;
    QComboBox* TagFontWeightL = nullptr;
    QLineEdit* NodeShiftT = nullptr;
    QCheckBox* TagHighlightingB = nullptr;

    QCheckBox* SoundsB = nullptr;
    QCheckBox* ShowNbspB = nullptr;
    QCheckBox* CommandLineInfoB = nullptr;
    QCheckBox* PreviewOnChangeB = nullptr;

    QPushButton* DoneB = nullptr;
    QPushButton* ReloadB = nullptr;
    QPushButton* DefaultB = nullptr;
    QPushButton* DeleteIniFile = nullptr;
    QPushButton* PreviewB = nullptr;
    QPushButton* SetColorsB = nullptr;
    QPushButton* SetFontB = nullptr;
    QPushButton* SchemaB = nullptr;
    QPushButton* TreeTagsB = nullptr;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// The controls of one colour.
    struct ColorField
    {
        QLineEdit* text = nullptr;
        QPushButton* button = nullptr;
        QFrame* panel = nullptr;
    };

    // Defined in SettingsLayout.cpp.
    void makeFileFrames();
    void makeTextFrame();
    void makeTagFrame();
    void makeOtherControls();
    void layOutFrames();
    [[nodiscard]] QGroupBox* makeFrame(const char* name, const char* caption);
    [[nodiscard]] QComboBox* makeList(const char* name, const QStringList& entries);
    [[nodiscard]] QLineEdit* makeText(const char* name);
    [[nodiscard]] QCheckBox* makeCheck(const char* name, const char* caption);
    [[nodiscard]] QPushButton* makeButton(const char* name, const char* caption);
    void addRow(QGridLayout& grid, const char* labelName, const char* label, QWidget& control);
    ColorField addColorRow(QGridLayout& grid, const char* labelName, const char* label, const char* name);
    void fitToScreen();

    void connectControls();
    void connectPreviews();
    void showSwatches();
    void showShownFont();
    void openPalette(int field);
    void done();
    void reload();
    void takeDefaults();
    void deleteIniFile();

    Form1& form;
    SeamOwner seams;
    /// In the order of `ColorNames`.
    std::array<ColorField, 5> colorFields{};
};

} // namespace vmk
