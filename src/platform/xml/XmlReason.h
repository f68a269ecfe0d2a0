#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace vmk {

/// The maximum length of a list of permitted names or values in a reason, in characters. Namespaces in braces
/// do not count, because they are removed before the reason is shown.
inline constexpr int XmlReasonListLength = 160;

/// Converts a libxml2 message to one line: line ends become blanks, blanks at the end are removed, and a list
/// in braces or brackets that is longer than a screen line is cut after an entry, with "…".
[[nodiscard]] std::string TidyReason(std::string_view message);

/// Removes every "{" + `namespaceUri` + "}" and every bare `namespaceUri`, in any case.
[[nodiscard]] QString WithoutNamespace(QString reason, const QString& namespaceUri);

/// Returns the kind of an error: its reason without the names, values and positions of the book, such as
/// "This element is not expected".
[[nodiscard]] QString KindOfReason(const QString& reason);

} // namespace vmk
