#include "SchemasF.h"

#include "FileOperations.h"
#include "FilePaths.h"
#include "SchemaViewerF.h"
#include "SettingsVariables.h"
#include "WindowFunctions.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLocale>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int FormMargin = 10;
constexpr int CentreOfReference = 14;

} // namespace

SchemasF::SchemasF(QWidget* owner)
    : QWidget(owner, Qt::Window)
{
    setObjectName(u"SchemasF"_s);
    // "Shemas" is the fixed spelling.
    setWindowTitle(u" Shemas List (click on the item to see schema)"_s);
    SchemasL = new QTreeWidget(this);
    SchemasL->setObjectName(u"SchemasL"_s);
    SchemasL->setAccessibleName(u"schemas"_s);
    SchemasL->setHeaderLabels({u"schema"_s, u"type"_s, u"status"_s, u"created"_s});
    SchemasL->setRootIsDecorated(false);
    SchemasL->setUniformRowHeights(true);
    SchemasL->header()->setStretchLastSection(false);
    SchemasL->header()->setSectionsMovable(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(SchemasL);
    const auto showItem = [this](QTreeWidgetItem* item) { showRow(SchemasL->indexOfTopLevelItem(item)); };
    connect(SchemasL, &QTreeWidget::itemClicked, this, showItem);
}

void SchemasF::ShowList()
{
    const bool shownFirst = !isVisible();
    fillList();
    fitColumns();
    if (shownFirst && parentWidget())
        PlaceFormBeside(*this, *parentWidget(), CentreOfReference, 0, 0);
    show();
    raise();
    activateWindow();
}

void SchemasF::fillList()
{
    rows = ListSchemas(SchemaFile);
    SchemasL->clear();
    for (const SchemaRow& row : rows) {
        new QTreeWidgetItem(SchemasL,
                            {FileNameOf(row.path), row.main ? u"main"_s : u"complimentary"_s,
                             row.found ? u"found"_s : u"not found"_s,
                             row.created.isValid()
                                 ? QLocale::system().toString(row.created, QLocale::ShortFormat)
                                 : QString()});
    }
    SchemasL->setCurrentItem(SchemasL->topLevelItem(0));
}

void SchemasF::fitColumns()
{
    // Before the list has its style, its size hints are too small.
    SchemasL->ensurePolished();
    SchemasL->header()->ensurePolished();
    int width = FormMargin;
    for (int column = 0; column < SchemasL->columnCount(); ++column) {
        SchemasL->resizeColumnToContents(column);
        SchemasL->setColumnWidth(column, SchemasL->columnWidth(column) + FormMargin);
        width += SchemasL->columnWidth(column);
    }
    const int rowHeight = SchemasL->sizeHintForRow(0);
    const int header = SchemasL->header()->sizeHint().height();
    const int shownRows = std::max(5, int(rows.size()) + 1);
    resize(width, header + rowHeight * shownRows + 2 * SchemasL->frameWidth());
}

void SchemasF::showRow(int row)
{
    if (row >= 0 && row < int(rows.size()) && FileExists(rows[size_t(row)].path))
        SchemaViewerF::Instance().ShowShemaInWB(rows[size_t(row)].path);
}

void SchemasF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        showRow(SchemasL->indexOfTopLevelItem(SchemasL->currentItem()));
    else if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void SchemasF::closeEvent(QCloseEvent* event)
{
    if (SchemaViewerF* viewer = SchemaViewerF::Existing())
        viewer->close();
    QWidget::closeEvent(event);
}

} // namespace vmk
