#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A table of replacements, and its file.
///
/// A clean-up file is text in UTF-16, low byte first, without a byte order mark. Each line ends with U+000D
/// alone: the signature, the scope, the number of rows in decimal, then five lines for each row.
namespace vmk {

/// One replacement.
struct CleanUpRow
{
    QString RepWhat; ///< The text or the expression to replace. A row without one has no effect.
    QString RepBy; ///< The replacement; with `RegExp`, its template.
    bool Case = false; ///< The comparison distinguishes upper and lower case.
    bool RegExp = false; ///< `RepWhat` is a regular expression.
    bool Enabled = true; ///< A run applies the row.

    friend bool operator==(const CleanUpRow&, const CleanUpRow&) = default;
};

/// Returns the texts of the scopes, in the order of the list in the window.
[[nodiscard]] const QStringList& CleanUpScopes();

struct CleanUpTable
{
    QString CleanWhere = CleanUpScopes().front(); ///< The scope; any text, as it is in the file.
    std::vector<CleanUpRow> rows;

    friend bool operator==(const CleanUpTable&, const CleanUpTable&) = default;
};

/// Returns the first line of a clean-up file. Its last two characters are those of the bytes 233 and 254 in
/// the system's code page. A file that was written under another code page has another signature, by design.
[[nodiscard]] QString CleanUpSignature();

/// Returns the content of a table's file. A U+000D inside a value would shift all later lines; it becomes a
/// blank.
[[nodiscard]] std::string CleanUpFileBytes(const CleanUpTable& table);

/// Reads a table from the content of its file, which is untrusted.
/// The lines that exist limit the number of rows. An incomplete last row keeps the fields that are there.
/// Only the text "1" sets a flag. An odd last byte is ignored. \return nothing if the first line is not the
/// signature
[[nodiscard]] std::optional<CleanUpTable> CleanUpTableOfBytes(std::string_view bytes);

/// The scope of the open clean-up file as a number in text form. Set by `ReadCleanWhereData`.
extern QString CleanWhereData;

/// Sets `CleanWhereData` from the first line of `CurrentCleanUpFile`, read as a line of bytes: "0" and "2"
/// for these two texts, "1" for any other, "-1" if there is no such file. No part of the program calls it, by
/// design: no clean-up file begins with such a line.
void ReadCleanWhereData();

} // namespace vmk
