// Any bytes can be in a clean-up file. The table that is read from it must come back when it is written and
// read again.

#include "CleanUpTable.h"

#include <QByteArray>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    // The signature depends on the code page.
    static const bool pinned = qputenv("VELLUMARK_CODEPAGE", "1252");
    if (!pinned)
        std::abort();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::optional<vmk::CleanUpTable> table = vmk::CleanUpTableOfBytes(bytes);
    if (table && vmk::CleanUpTableOfBytes(vmk::CleanUpFileBytes(*table)) != table)
        std::abort();
    return 0;
}
