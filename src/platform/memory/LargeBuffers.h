#pragma once

#include <cstddef>
#include <string>

namespace vmk {

/// Returns an empty string with a capacity of `capacity` bytes. From a few megabytes, requests large pages
/// from the system: otherwise the page faults of a book-sized result take more time than the work itself.
[[nodiscard]] std::string StringWithRoom(size_t capacity);

/// Returns the whole pages of a range of memory to the system. Their bytes, which nobody may read any more,
/// become 0; the memory still belongs to its owner.
void ReleasePages(char* start, size_t size);

} // namespace vmk
