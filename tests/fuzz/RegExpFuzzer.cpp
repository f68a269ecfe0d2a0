// Any pattern on any text: the call ends soon, and its matches are in the text, one after the other.
// The input is one byte of options, then pattern and text separated by a line feed.

#include "ProcessorTime.h"
#include "RegExp.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void Check(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckMatches(const std::vector<vmk::RegExpMatch>& matches, const QString& text)
{
    qsizetype previousEnd = 0;
    for (const vmk::RegExpMatch& match : matches) {
        Check(match.FirstIndex >= previousEnd && match.FirstIndex + match.Length <= text.size());
        Check(match.Value == text.mid(match.FirstIndex, match.Length));
        previousEnd = match.FirstIndex + match.Length;
    }
}

/// Runs a call and aborts if it takes much more processor time than the limit of a search. A budget by the
/// size of the input, as other fuzzers have it, does not fit: short patterns can need any time, which the
/// limit ends.
template <typename Call>
auto WithinLimit(qsizetype textLength, const Call& call)
{
    constexpr double BaseSeconds = 0.25;
    constexpr double SecondsForUnit = 1e-7;
    constexpr double MostTimes = 4;
    const vmk::ProcessorTime time;
    auto result = call();
    Check(time.seconds() < MostTimes * (BaseSeconds + SecondsForUnit * double(textLength)));
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const size_t end = std::min(input.find('\n'), input.size());
    const std::string_view text = input.substr(std::min(end + 1, input.size()));
    const auto decode = [bytes = (data[0] & 8) != 0](std::string_view part) {
        const auto length = static_cast<qsizetype>(part.size());
        return bytes ? QString::fromLatin1(part.data(), length) : QString::fromUtf8(part.data(), length);
    };

    vmk::RegExp expression;
    expression.Pattern = decode(input.substr(0, end));
    expression.IgnoreCase = data[0] & 1;
    expression.MultiLine = data[0] & 2;
    expression.Global = data[0] & 4;
    expression.ByteText = data[0] & 8;
    const QString subject = decode(text);
    const auto matches = WithinLimit(subject.size(), [&] { return expression.Execute(subject); });
    if (!matches)
        return 0;
    CheckMatches(*matches, subject);
    // A pattern close to the time limit may exceed it the second time.
    if (const auto same = WithinLimit(subject.size(), [&] { return expression.Replace(subject, u"$&"); }))
        Check(*same == subject);
    if (const auto count = WithinLimit(subject.size(), [&] { return expression.Count(subject); }))
        Check(*count == static_cast<qsizetype>(matches->size()));
    return 0;
}
