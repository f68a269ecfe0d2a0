#pragma once

#include <cstddef>
#include <string>

namespace vmk {

/// An empty string with room for `capacity` bytes. From a few megabytes on the system is asked to back it
/// with large pages: otherwise a book-sized result costs more in first touches of its pages than in work.
[[nodiscard]] std::string StringWithRoom(size_t capacity);

} // namespace vmk
