// Any bytes may be in a history file. What is read from it comes back the same when it is written and read
// again, and adding to it keeps its order.

#include "SearchHistories.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const QStringList list = vmk::DecodeHistory(bytes);
    const std::string written = vmk::EncodeHistory(list);
    const QStringList again = vmk::DecodeHistory(written);
    // Brackets that are written twice are read once: from then on nothing changes.
    if (again.size() != list.size() || vmk::DecodeHistory(vmk::EncodeHistory(again)) != again)
        std::abort();
    for (const QString& entry : list) {
        if (entry.isEmpty() || entry.contains(u'\r'))
            std::abort();
    }
    QStringList added = list;
    vmk::AddToHistoryList(added, QStringLiteral("new"));
    if (added.first() != QLatin1StringView("new") || added.count(QStringLiteral("new")) != 1)
        std::abort();
    return 0;
}
