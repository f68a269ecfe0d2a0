// Any bytes can be in a clean-up file. The table that is read from it must come back when it is written and
// read again.

#include "CleanUpTable.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::optional<vmk::CleanUpTable> table = vmk::CleanUpTableOfBytes(bytes);
    if (table && vmk::CleanUpTableOfBytes(vmk::CleanUpFileBytes(*table)) != table)
        std::abort();
    return 0;
}
