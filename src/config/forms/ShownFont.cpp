#include "ShownFont.h"

#include <QFont>
#include <QFontInfo>

namespace vmk {

using namespace Qt::StringLiterals;

QString FontShownFor(const QString& family)
{
    QFont font;
    font.setFamilies({family});
    const QString shown = QFontInfo(font).family();
    return shown.compare(family, Qt::CaseInsensitive) == 0 ? QString() : shown;
}

QString FontListDelegate::displayText(const QVariant& value, const QLocale&) const
{
    const QString family = value.toString();
    const QString shown = FontShownFor(family);
    return shown.isEmpty() ? family : family + u"  (shown as "_s + shown + u')';
}

} // namespace vmk
