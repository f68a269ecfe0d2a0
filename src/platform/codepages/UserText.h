#pragma once

#include <QString>
#include <QStringView>

#include <string>
#include <string_view>

/// Texts of the user in files of the system's single-byte code page. A text that the page cannot hold is
/// written in UTF-8; the reader takes valid UTF-8 as such and everything else as the code page.
namespace vmk {

[[nodiscard]] QString DecodeUserText(std::string_view bytes);

/// `DecodeUserText` of the result is `text`, but for lone surrogates.
[[nodiscard]] std::string EncodeUserText(QStringView text);

} // namespace vmk
