#pragma once

#include <cstddef>
#include <string>

namespace vmk {

/// Returns an empty string with a capacity of `capacity` bytes. From a few megabytes, requests large pages
/// from the system: otherwise the page faults of a book-sized result take more time than the work itself.
[[nodiscard]] std::string StringWithRoom(size_t capacity);

} // namespace vmk
