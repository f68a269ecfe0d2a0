#pragma once

#include <QWidget>

namespace vmk {

class DisplayView;

/// Shows one schema for reading: coloured, one element a line, indented by depth.
class SchemaViewerF : public QWidget
{
    Q_OBJECT

public:
    /// The one viewer, made when it is first asked for; it belongs to the main window.
    [[nodiscard]] static SchemaViewerF& Instance();
    /// The viewer if there is one yet, else null.
    [[nodiscard]] static SchemaViewerF* Existing();

    /// Shows the schema file, in a window of 600 by 450 pixels; does nothing if the file is missing.
    void ShowShemaInWB(const QString& path);

    DisplayView* SchemaWB = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    explicit SchemaViewerF(QWidget* owner);
};

} // namespace vmk
