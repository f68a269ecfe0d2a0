#pragma once

#include <QWidget>

namespace vmk {

class DisplayView;

/// Shows one schema, read-only: coloured, one element per line, indented by depth.
class SchemaViewerF : public QWidget
{
    Q_OBJECT

public:
    /// The viewer, created on first use; the main window owns it.
    [[nodiscard]] static SchemaViewerF& Instance();
    /// The viewer if it exists, otherwise null.
    [[nodiscard]] static SchemaViewerF* Existing();

    /// Shows the schema file in a window of 600 by 450 pixels. Does nothing if the file is missing.
    /// The spelling of the name is fixed.
    void ShowShemaInWB(const QString& path);

    DisplayView* SchemaWB = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    explicit SchemaViewerF(QWidget* owner);
};

} // namespace vmk
