#include "LargeBuffers.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace vmk {

std::string StringWithRoom(size_t capacity)
{
    constexpr size_t WorthAsking = 4'000'000;
    std::string text;
    text.reserve(capacity);
    if (capacity < WorthAsking)
        return text;
    // Only whole pages belong to the string. If the system ignores the advice, nothing changes.
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t begun = reinterpret_cast<uintptr_t>(text.data()) % page;
    const size_t skipped = begun == 0 ? 0 : page - begun;
    madvise(text.data() + skipped, (capacity - skipped) / page * page, MADV_HUGEPAGE);
    return text;
}

void ReleasePages(char* start, size_t size)
{
    const auto page = static_cast<uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto from = reinterpret_cast<uintptr_t>(start);
    const uintptr_t first = (from + page - 1) / page * page;
    const uintptr_t end = (from + size) / page * page;
    if (first < end)
        static_cast<void>(::madvise(start + (first - from), end - first, MADV_DONTNEED));
}

} // namespace vmk
