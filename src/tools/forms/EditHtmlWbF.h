#pragma once

#include "FragmentEditing.h"
#include "ToolForm.h"

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QWindow;

namespace vmk {

class DisplayView;

/// Shows the HTML source of the selection in the display, and writes the changed source back.
///
/// When the user comes to this window from another window of the program, the editor shows the selection of
/// that moment. Changes that were not applied are lost, by design. A return from another program, or from a
/// dialog of this window, keeps the text.
class EditHtmlWbF : public ToolForm
{
    Q_OBJECT

public:
    EditHtmlWbF();

    /// Replaces the content of the editor by the display's selection.
    void Refresh();
    /// Must be called when the display shows another page: a fragment of the previous one does not belong
    /// there.
    void PageReplaced();
    /// Writes the editor's text back into the book.
    void ApplyFragment();
    /// Colours the source.
    void PaintFragment();
    /// Shows the codes of the character at the caret.
    void ShowCharCodes();
    /// Asks for a font. The editor keeps its default font, whatever the user selects, by design.
    void ChooseViewerFont();
    /// Shows the source of the selection as a coloured page. No control calls it, by design.
    void PaintSelectionSource();

    DisplayView* HtmlEditor = nullptr;
    QPushButton* ApplyB = nullptr;
    QPushButton* RefreshB = nullptr;
    QPushButton* FontB = nullptr;
    QPushButton* ColorB = nullptr;
    /// `FindB` and `HelpB` have no action, by design.
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
    void noteActiveWindow(const QWindow* window);

    Fragment fragment;
    /// Another window of the program was active since the editor was filled.
    bool wasElsewhere = true;
};

} // namespace vmk
