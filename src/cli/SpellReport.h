#pragma once

#include "BookItem.h"
#include "BookWords.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace vmk {

class SpellChecker;

/// How a book is checked.
struct SpellReportOptions
{
    BookMarkup markup = BookMarkup::LeaveOut;
    bool unique = false; ///< each word once, most frequent first
    bool suggest = false;
    bool json = false;
    QString language; ///< in place of the book's own; empty for that
    QStringList customWords; ///< not reported
};

/// A suspicious word of a book.
struct SuspiciousWord
{
    QString word;
    int line = 1; ///< of its first occurrence when each word is reported once
    int column = 1;
    int count = 1;
    QStringList suggestions;
};

/// What a check of one book found.
struct SpellReport
{
    QString book; ///< its name
    QString failure; ///< why it could not be checked; empty when it was
    std::vector<SuspiciousWord> words;
};

/// Reads and checks one book.
[[nodiscard]] SpellReport CheckSpelling(const BookItem& book, const SpellReportOptions& options,
                                        SpellChecker& checker);

/// "BOOK:LINE:COLUMN: word", with the count after it when each word is reported once, and then the
/// suggestions after a colon if they were asked for; or the same as a JSON object.
[[nodiscard]] QString SpellLine(const SpellReport& report, const SuspiciousWord& word,
                                const SpellReportOptions& options);

} // namespace vmk
