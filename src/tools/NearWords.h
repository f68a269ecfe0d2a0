#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vmk {

/// The right words that one slip away from `word`: neighbours exchanged, a letter doubled, another letter,
/// one too many, one missing, a blank missing. In this order, which is roughly that of likelihood.
/// @param letters those that may be missing or wrong, most frequent first.
/// @param isRight the verdict on a word.
/// @param goOn is asked before each verdict; false ends the search with what was found.
[[nodiscard]] QStringList NearWords(const QString& word, const QString& letters,
                                    const std::function<bool(const QString&)>& isRight,
                                    const std::function<bool()>& goOn);

} // namespace vmk
