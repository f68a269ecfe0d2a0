#pragma once

#include <QString>
#include <QStyledItemDelegate>

namespace vmk {

/// Returns the font that the display uses instead of `family`; empty if the system has `family`.
[[nodiscard]] QString FontShownFor(const QString& family);

/// Shows for each entry of a font list the font that the display uses instead of it.
class FontListDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QString displayText(const QVariant& value, const QLocale& locale) const override;
};

} // namespace vmk
