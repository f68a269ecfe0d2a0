#pragma once

#include <string>
#include <string_view>

namespace vmk {

/// Returns a read-only page, in UTF-8, for any XML text: one element per line, indented by depth, coloured. A
/// text that is not well-formed is shown line by line without change.
/// \param bytes  the content of the file; its declaration defines the encoding
[[nodiscard]] std::string SchemaPage(std::string_view bytes);

} // namespace vmk
