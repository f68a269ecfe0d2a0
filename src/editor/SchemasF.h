#pragma once

#include "SchemaCatalogue.h"

#include <QWidget>

#include <vector>

class QTreeWidget;

namespace vmk {

class SchemaViewerF;

/// The list of schemas with their state. A click on a row, or Enter, shows the schema. Closing the form also
/// closes the viewer.
class SchemasF : public QWidget
{
    Q_OBJECT

public:
    explicit SchemasF(QWidget* owner);

    /// Reads the list of schemas again, beginning with `SchemaFile`, and shows the form.
    void ShowList();

    QTreeWidget* SchemasL = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fillList();
    void fitColumns();
    void showRow(int row);

    std::vector<SchemaRow> rows;
};

} // namespace vmk
