#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vmk {

/// Returns the right words that differ from `word` by one typing error: neighbours exchanged, a letter
/// doubled, a wrong letter, one too many, one missing, a blank missing; in this order, which is about that of
/// likelihood.
/// @param letters the letters that may be missing or wrong, most frequent first.
/// @param isRight the verdict on a word.
/// @param goOn called before each verdict; false ends the search with the words found so far.
[[nodiscard]] QStringList NearWords(const QString& word, const QString& letters,
                                    const std::function<bool(const QString&)>& isRight,
                                    const std::function<bool()>& goOn);

} // namespace vmk
