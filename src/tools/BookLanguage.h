#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

class DisplayDocument;

/// The language tag that a book's text names in its first `lang` element in front of its body; empty for
/// none.
[[nodiscard]] QString BookLanguage(QStringView xml);
/// The same of the text that a display shows now.
[[nodiscard]] QString BookLanguage(const DisplayDocument& document);

} // namespace vmk
