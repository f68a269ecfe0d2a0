#pragma once

#include "BookValidation.h"
#include "Files.h"

#include <QString>

namespace vmk {

/// The result of checking one book.
struct BookCheck
{
    QString book; ///< as the user named it
    QString failure; ///< the reason why it could not be read; empty if it was read
    XmlParseError error; ///< the first error; `errorCode` is 0 if there is none
};

/// Reads a book.
/// \param book  path, or "-" for standard input
[[nodiscard]] FileContent ReadBookOrInput(const QString& book);

/// Reads and checks one book. Its declaration determines the encoding.
/// \param book     path, or "-" for standard input
[[nodiscard]] BookCheck CheckBook(const QString& book, const BookValidation& validation);

/// Returns one result line: "BOOK: No errors (against schema)" or "BOOK:LINE:COLUMN: Error against schema.
/// REASON"; for a book that could not be read, "BOOK: " and the reason.
[[nodiscard]] QString ResultLine(const BookCheck& check, ValidateAgainst against);

/// Returns the same as one JSON object on one line.
[[nodiscard]] QString ResultJson(const BookCheck& check, ValidateAgainst against);

} // namespace vmk
