#pragma once

#include "XmlError.h"
#include "XmlSchemaCache.h"

#include <QString>

#include <memory>

namespace vmk {

/// The outcome of checking one book.
struct BookCheck
{
    QString book; ///< as the user named it
    QString failure; ///< why it could not be read; empty when it was
    XmlParseError error; ///< the first error; `errorCode` 0 for none
};

/// Reads and checks one book; its declaration decides the encoding.
/// \param book     path, or "-" for standard input
/// \param schemas  what to validate against; null for well-formedness and namespaces alone
[[nodiscard]] BookCheck CheckBook(const QString& book, std::shared_ptr<const XmlSchemaCache> schemas);

/// One result line: "BOOK: No errors (against schema)" or "BOOK:LINE:COLUMN: Error against schema. REASON";
/// for a book that could not be read "BOOK: " and why.
[[nodiscard]] QString ResultLine(const BookCheck& check, bool againstSchema);

/// The same as one JSON object on one line.
[[nodiscard]] QString ResultJson(const BookCheck& check, bool againstSchema);

} // namespace vmk
