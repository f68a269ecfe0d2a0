#pragma once

#include "SchemaCatalogue.h"

#include <QWidget>

#include <vector>

class QTreeWidget;

namespace vmk {

class SchemaViewerF;

/// The list of schemas with their state. A click on a row, or Enter, shows that schema; closing the form
/// closes the viewer too.
class SchemasF : public QWidget
{
    Q_OBJECT

public:
    explicit SchemasF(QWidget* owner);

    /// Reads the schemas anew, beginning with `SchemaFile`, and shows the form.
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
