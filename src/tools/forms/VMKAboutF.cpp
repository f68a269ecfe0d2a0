#include "VMKAboutF.h"

#include "ToolbarPictures.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int Margin = 32;
constexpr int PictureSize = 64;
constexpr qreal NameScale = 2;

QLabel* MakeLine(const QString& text)
{
    auto* line = new QLabel(text);
    line->setAlignment(Qt::AlignCenter);
    return line;
}

} // namespace

VMKAboutF::VMKAboutF()
    : ToolForm(u"VMKAboutF"_s, u" About VMK"_s)
{
    auto* picture = MakeLine(QString());
    picture->setPixmap(ProgramPicture().pixmap(QSize(PictureSize, PictureSize), devicePixelRatioF()));
    QLabel* name = MakeLine(u"Vellumark"_s);
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * NameScale);
    large.setBold(true);
    name->setFont(large);

    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(Margin, Margin, Margin, Margin);
    lines->addWidget(picture);
    lines->addWidget(name);
    lines->addWidget(MakeLine(u"(part of Quirewright distribution)"_s));
    lines->addSpacing(Margin / 2);
    lines->addWidget(MakeLine(u"version "_s + QStringLiteral(VMK_VERSION)));
    lines->addWidget(MakeLine(u"free software under the MIT licence"_s));
    lines->setSizeConstraint(QLayout::SetFixedSize);
}

void VMKAboutF::mouseReleaseEvent(QMouseEvent*)
{
    close();
}

void VMKAboutF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        close();
    else
        ToolForm::keyPressEvent(event);
}

} // namespace vmk
