#pragma once

#include <QDialog>
#include <QSizeF>

class QLabel;

namespace vmk {

/// What the size of the report form hangs on, in twips.
struct ReportMeasures
{
    float labelWidth = 0;
    float labelHeight = 0;
    float margin = 0; ///< round the label
    float edgesX = 0; ///< both vertical edges of the window
    float edgesY = 0; ///< both horizontal edges
    float caption = 0; ///< height of the title bar
};

/// Twips: the form by its outer rectangle, the label within the client area.
struct ReportGeometry
{
    float formWidth = 0;
    float formHeight = 0;
    float labelLeft = 0;
    float labelTop = 0;
};

/// The form about its label, not smaller than 3500 by 1300 twips, with the label in the middle.
[[nodiscard]] ReportGeometry LayOutReport(const ReportMeasures& measures);

/// The report of a validation from the command line: one label on a small form. One instance at most.
class CommLineInfoF : public QDialog
{
    Q_OBJECT

public:
    ~CommLineInfoF() override;

    /// The form, made when there is none.
    [[nodiscard]] static CommLineInfoF& Instance();
    /// The form as it stands; null when there is none.
    [[nodiscard]] static CommLineInfoF* Existing();
    /// Takes the form away, if there is one.
    static void Unload();

    /// Shows a text of one or more lines.
    ///
    /// \param newCaption  the form's new caption, if not empty
    /// \param modal       returns when the user has closed the form; else at once, with the form painted
    /// \param spare       without effect
    /// \param topmost     keeps the form above all windows
    void ShowActionReport(const QString& text, const QString& newCaption, bool modal, bool spare,
                          bool topmost);

    QLabel* ReportL = nullptr;

private:
    CommLineInfoF();

    void arrange();
};

} // namespace vmk
