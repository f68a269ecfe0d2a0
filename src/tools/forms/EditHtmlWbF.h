#pragma once

#include "FragmentEditing.h"
#include "ToolForm.h"

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;

namespace vmk {

class DisplayView;

/// Shows the HTML source of what is selected in the display and writes it back after the user has changed it.
///
/// Each activation of the window reads the selection anew: the user selects in the book, comes to this window
/// and finds that selection. Changes that were not applied are lost then, which is meant.
class EditHtmlWbF : public ToolForm
{
    Q_OBJECT

public:
    EditHtmlWbF();

    /// Empties the editor and takes the display's selection into it.
    void Refresh();
    /// Writes the editor's text back into the book.
    void ApplyFragment();
    /// Colours the source.
    void PaintFragment();
    /// Shows the codes of the character at the caret.
    void ShowCharCodes();
    /// Asks for a font. Whatever is chosen, the editor goes back to its own font, which is meant.
    void ChooseViewerFont();
    /// Shows the source of the selection as a coloured page for reading. No control calls it.
    void PaintSelectionSource();

    DisplayView* HtmlEditor = nullptr;
    QPushButton* ApplyB = nullptr;
    QPushButton* RefreshB = nullptr;
    QPushButton* FontB = nullptr;
    QPushButton* ColorB = nullptr;
    /// Without effect, as `HelpB`; both by design.
    QPushButton* FindB = nullptr;
    QPushButton* HelpB = nullptr;
    QCheckBox* ValidateSelectionB = nullptr;
    QLineEdit* AsciiNumT = nullptr;
    QLineEdit* HexNumT = nullptr;

    [[nodiscard]] int FragmentFirstNode() const { return fragment.firstNode; }
    [[nodiscard]] int FragmentLastNode() const { return fragment.lastNode; }

protected:
    void Form_Load() override;
    void Form_Unload() override;
    bool event(QEvent* event) override;

private:
    void makeEditor();
    QPushButton* makeButton(const QString& name, const QString& caption);
    QGroupBox* makeCodeFrame();
    QGroupBox* makeValidationFrame();
    void ClearEditor();
    void showCodes(const ShownCodes& codes);

    Fragment fragment;
};

} // namespace vmk
