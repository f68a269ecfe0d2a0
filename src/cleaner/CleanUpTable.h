#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A table of replacements, and the file that holds it.
///
/// A clean-up file is text in UTF-16, low byte first, without a byte order mark. Each line ends with U+000D
/// alone: the signature, the scope, the number of rows in decimal, then five lines for each row.
namespace vmk {

/// One replacement.
struct CleanUpRow
{
    QString RepWhat; ///< The text or the expression to replace; the row does nothing when it is empty.
    QString RepBy; ///< The replacement, or with `RegExp` the template.
    bool Case = false; ///< Upper and lower case differ.
    bool RegExp = false; ///< `RepWhat` is a regular expression.
    bool Enabled = true; ///< A run applies the row.

    friend bool operator==(const CleanUpRow&, const CleanUpRow&) = default;
};

/// The texts that a scope has, in the order of the list in the window.
[[nodiscard]] const QStringList& CleanUpScopes();

struct CleanUpTable
{
    QString CleanWhere = CleanUpScopes().front(); ///< The scope, as read: any text.
    std::vector<CleanUpRow> rows;

    friend bool operator==(const CleanUpTable&, const CleanUpTable&) = default;
};

/// The first line of a clean-up file. Its last two characters are the bytes 233 and 254 in the system's code
/// page, so a file made under another code page has another signature, which is meant.
[[nodiscard]] QString CleanUpSignature();

/// The bytes of a table's file. A line end inside a value, which would shift all later lines, becomes a
/// blank.
[[nodiscard]] std::string CleanUpFileBytes(const CleanUpTable& table);

/// Reads a table from the bytes of its file.
/// The row count is bounded by the lines that exist. A row that the end of the file cuts keeps the fields
/// that are there. A flag is set by the text "1" alone. An odd last byte is ignored.
/// \return nothing if the first line is not the signature.
[[nodiscard]] std::optional<CleanUpTable> CleanUpTableOfBytes(std::string_view bytes);

} // namespace vmk
