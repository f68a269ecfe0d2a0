#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

class DisplayDocument;

/// Returns the language tag in the first `lang` element before the body of a book; empty without one.
[[nodiscard]] QString BookLanguage(QStringView xml);
/// Returns the same for the current text of a display.
[[nodiscard]] QString BookLanguage(const DisplayDocument& document);

} // namespace vmk
