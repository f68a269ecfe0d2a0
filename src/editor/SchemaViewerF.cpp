#include "SchemaViewerF.h"

#include "DisplayView.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "Form1.h"
#include "SchemaPage.h"
#include "WindowFunctions.h"

#include <QKeyEvent>
#include <QPointer>
#include <QVBoxLayout>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize FormSize(600, 450);
constexpr int RightOfReference = 0;

QPointer<SchemaViewerF> TheViewer;

} // namespace

SchemaViewerF::SchemaViewerF(QWidget* owner)
    : QWidget(owner, Qt::Window)
{
    setObjectName(u"SchemaViewerF"_s);
    // The viewer is read next to the book or the list, which keeps the focus, so that a wrong value can be
    // corrected at once.
    setAttribute(Qt::WA_ShowWithoutActivating);
    SchemaWB = new DisplayView(this);
    SchemaWB->setAccessibleName(u"schema"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(SchemaWB);
}

SchemaViewerF& SchemaViewerF::Instance()
{
    if (!TheViewer)
        TheViewer = new SchemaViewerF(Form1::Instance());
    return *TheViewer;
}

SchemaViewerF* SchemaViewerF::Existing()
{
    return TheViewer;
}

void SchemaViewerF::ShowShemaInWB(const QString& path)
{
    if (!FileExists(path))
        return;
    resize(FormSize);
    setWindowTitle(u" VMK Schema Viewer: "_s + FileNameOf(path));
    SchemaWB->setPage(QByteArray::fromStdString(SchemaPage(ReadFileText(path))));
    // Beside the book, so that a value can be read while it is typed.
    if (!isVisible() && parentWidget())
        PlaceFormBeside(*this, *parentWidget(), RightOfReference, 0, 0);
    show();
    raise();
}

void SchemaViewerF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vmk
