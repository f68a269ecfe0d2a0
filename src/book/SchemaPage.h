#pragma once

#include <string>
#include <string_view>

namespace vmk {

/// A page that shows any XML text for reading: one element a line, indented by depth, coloured; UTF-8. A
/// text that is not well-formed is shown line by line as it stands.
/// @param bytes the file's content; its declaration tells the encoding
[[nodiscard]] std::string SchemaPage(std::string_view bytes);

} // namespace vmk
