#pragma once

#include "BookItem.h"
#include "BookValidation.h"

#include <QString>

#include <vector>

namespace vmk {

/// The errors that a check of a book looks for.
enum class ErrorsToFind
{
    First,
    All
};

/// The result of checking one book.
struct BookCheck
{
    QString book; ///< its name
    QString failure; ///< the reason why it could not be read; empty if it was read
    std::vector<XmlParseError> errors;
};

/// Reads and checks one book. Its declaration determines the encoding.
[[nodiscard]] BookCheck CheckBook(const BookItem& book, const BookValidation& validation,
                                  ErrorsToFind errors);

/// Returns the result lines of a book that was read: "BOOK: No errors (against schema)", or for each error
/// "BOOK:LINE:COLUMN: Error against schema. REASON".
[[nodiscard]] QStringList ResultLines(const BookCheck& check, ValidateAgainst against);

/// Returns the same as one JSON object on one line, with the first error as "error", and with
/// `ErrorsToFind::All` all of them as "errors".
[[nodiscard]] QString ResultJson(const BookCheck& check, ValidateAgainst against, ErrorsToFind errors);

/// Returns the reason of an error as it is shown.
[[nodiscard]] QString ShownReason(const XmlParseError& error);

} // namespace vmk
