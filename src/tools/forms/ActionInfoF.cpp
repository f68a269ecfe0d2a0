#include "ActionInfoF.h"

#include "WindowFunctions.h"

#include <QHBoxLayout>
#include <QLabel>

namespace vmk {

using namespace Qt::StringLiterals;

ActionInfoF::ActionInfoF(QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint)
{
    setObjectName(u"ActionInfoF"_s);
    setAttribute(Qt::WA_ShowWithoutActivating);
    SpellReport = new QLabel;
    SpellReport->setObjectName(u"SpellReport"_s);
    SpellReport->setFrameShape(QFrame::StyledPanel);
    constexpr int Margin = 8;
    SpellReport->setMargin(Margin);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(SpellReport);
}

void ActionInfoF::showEvent(QShowEvent* event)
{
    constexpr int RightOfReference = 0;
    adjustSize();
    if (parentWidget())
        PlaceFormBeside(*this, *parentWidget(), RightOfReference, 0, 0);
    QWidget::showEvent(event);
}

} // namespace vmk
