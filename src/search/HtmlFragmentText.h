#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

/// Returns the text of a range's HTML, in the form that regular expressions search.
///
/// Removes the front of a page (up to the ">" after the first of "<BASEFONT", "<BODY", "</HEAD" that has one)
/// and all tags. `&nbsp;` becomes U+00A0; all other entities except the two below are kept. A blank and the
/// CR LF after it become a blank; each other CR LF becomes a single CR.
/// \param decodeAngles  replaces `&lt;` and `&gt;` by "<" and ">"
[[nodiscard]] QString HtmlFragmentToText(QStringView html, bool decodeAngles);

} // namespace vmk
