#include "Compression.h"

#include <zstd.h>

#include <algorithm>

namespace vmk {

std::string Compress(std::string_view bytes)
{
    std::string result(ZSTD_compressBound(bytes.size()), '\0');
    const size_t used = ZSTD_compress(result.data(), result.size(), bytes.data(), bytes.size(), 1);
    result.resize(ZSTD_isError(used) != 0 ? 0 : used);
    return result;
}

std::optional<std::string> Decompress(std::string_view compressed, std::size_t most)
{
    const unsigned long long size = ZSTD_getFrameContentSize(compressed.data(), compressed.size());
    if (size == ZSTD_CONTENTSIZE_UNKNOWN || size == ZSTD_CONTENTSIZE_ERROR || size > most)
        return std::nullopt;
    std::string result(static_cast<size_t>(size), '\0');
    const size_t used = ZSTD_decompress(result.data(), result.size(), compressed.data(), compressed.size());
    if (ZSTD_isError(used) != 0 || used != result.size())
        return std::nullopt;
    return result;
}

} // namespace vmk
