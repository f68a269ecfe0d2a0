#include "JournalReader.h"

#include "Checksum.h"
#include "DisplayDocument.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Journals of strangers. The first byte decides: the rest is a journal as it is, or the contents of records
/// whose checksums are made right, so that the decoder after them is reached. What can be read can be shown,
/// and its page is read back as itself.
using namespace vmk;

namespace {

/// Makes records of the input: kind, two bytes of length, payload.
std::string JournalOf(std::string_view input)
{
    std::string journal(JournalSignature);
    std::uint64_t sum = 0;
    while (input.size() >= 3) {
        const auto kind = static_cast<unsigned char>(input[0]);
        const std::size_t wanted
            = static_cast<unsigned char>(input[1]) + 256U * static_cast<unsigned char>(input[2]);
        input.remove_prefix(3);
        const std::string payload(input.substr(0, wanted));
        input.remove_prefix(payload.size());
        ByteWriter head;
        head.fixed(payload.size(), 4);
        const std::string covered = static_cast<char>(kind) + payload;
        sum = Checksum(covered, sum);
        ByteWriter end;
        end.fixed(sum, 8);
        journal += head.bytes() + covered + end.bytes();
    }
    return journal;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::optional<RecordedSession> session
        = ReadJournal((data[0] & 1U) != 0 ? JournalOf(input) : std::string(input));
    if (!session)
        return 0;
    DisplayDocument document;
    ShowSession(session->state, document);
    if (std::size_t(document.lineCount()) != session->state.lines.size())
        std::abort();
    for (int i = 0; i < document.lineCount(); ++i) {
        if (document.line(i).text != session->state.lines[std::size_t(i)]->text)
            std::abort();
    }
    return 0;
}
