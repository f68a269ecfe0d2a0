#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

/// The text of a range's HTML, as regular expressions search it.
///
/// Takes off a page's front (up to the ">" after the first of "<BASEFONT", "<BODY", "</HEAD" that has one)
/// and all tags. `&nbsp;` becomes U+00A0; all other entities but the two below stay. A blank before CR LF
/// swallows that line end; each other CR LF becomes a single CR.
/// \param decodeAngles `&lt;` and `&gt;` become "<" and ">"
[[nodiscard]] QString HtmlFragmentToText(QStringView html, bool decodeAngles);

} // namespace vmk
