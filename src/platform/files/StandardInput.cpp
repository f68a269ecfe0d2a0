#include "StandardInput.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace vmk {

FileContent ReadStandardInput()
{
    FileContent content;
    char piece[1 << 16];
    while (const size_t length = std::fread(piece, 1, sizeof piece, stdin)) {
        if (content.bytes.size() + length > MaxFileBytes) {
            content.outcome = ReadOutcome::TooLarge;
            return content;
        }
        content.bytes.append(piece, length);
    }
    if (std::ferror(stdin) != 0) {
        content.outcome = ReadOutcome::Unreadable;
        content.systemReason = u"standard input failed"_s;
    }
    return content;
}

} // namespace vmk
