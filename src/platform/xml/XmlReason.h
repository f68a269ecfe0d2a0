#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace vmk {

/// Longest list of permitted names or values that a reason shows, in characters; namespaces in braces, which
/// are dropped before it is shown, do not count.
inline constexpr int XmlReasonListLength = 160;

/// Makes one line of a libxml2 message: line ends become blanks, blanks at the end go, and a list in braces
/// or brackets that is longer than a screen line is cut behind an entry with "…".
[[nodiscard]] std::string TidyReason(std::string_view message);

/// Deletes every "{" + `namespaceUri` + "}" and every bare `namespaceUri`, whatever the case.
[[nodiscard]] QString WithoutNamespace(QString reason, const QString& namespaceUri);

} // namespace vmk
