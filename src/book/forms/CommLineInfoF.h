#pragma once

#include <QDialog>
#include <QSizeF>

class QLabel;

namespace vmk {

/// The measures that determine the size of the report form, in twips.
struct ReportMeasures
{
    float labelWidth = 0;
    float labelHeight = 0;
    float margin = 0; ///< around the label
    float edgesX = 0; ///< both vertical edges of the window
    float edgesY = 0; ///< both horizontal edges
    float caption = 0; ///< height of the title bar
};

/// In twips: the outer rectangle of the form, and the label within the client area.
struct ReportGeometry
{
    float formWidth = 0;
    float formHeight = 0;
    float labelLeft = 0;
    float labelTop = 0;
};

/// Computes the form around its label, at least 3500 by 1300 twips, with the label in the centre.
[[nodiscard]] ReportGeometry LayOutReport(const ReportMeasures& measures);

/// The report of a validation from the command line: one label on a small form. At most one instance.
class CommLineInfoF : public QDialog
{
    Q_OBJECT

public:
    ~CommLineInfoF() override;

    /// The form; created if it does not exist.
    [[nodiscard]] static CommLineInfoF& Instance();
    /// The existing form; null if there is none.
    [[nodiscard]] static CommLineInfoF* Existing();
    /// Deletes the form if it exists.
    static void Unload();

    struct ReportOptions
    {
        QString caption = {}; ///< the form's new caption, if not empty
        /// Returns when the user has closed the form; otherwise at once, with the form painted.
        bool modal = false;
        bool topmost = false; ///< keeps the form above all windows
    };

    /// Shows a text of one or more lines.
    void ShowActionReport(const QString& text, const ReportOptions& options);

    QLabel* ReportL = nullptr;

private:
    CommLineInfoF();

    void arrange();
};

} // namespace vmk
