#pragma once

#include "ProcessorTime.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

/// Makes a slow input a finding of a fuzzer, before it becomes a time-out.
namespace vmk {

/// Runs `check` on an input and aborts if it takes much more processor time for each byte than on a plain
/// input. The limit is a ratio, so that neither the machine nor sanitizers change it. \param check  the check
/// of the fuzzer, called with data and size \param plain  an ordinary input, without anything that costs more
/// than its size; 64 KB or more
template <class Check>
void CheckWithBudget(Check&& check, const std::vector<uint8_t>& plain, const uint8_t* data, std::size_t size)
{
    constexpr double MostWorkPerByte = 200;
    // The fixed cost of a call is that of some plain text.
    constexpr std::size_t FreeBytes = 32'768;
    const auto secondsOf = [&](const uint8_t* bytes, std::size_t count) {
        const ProcessorTime time;
        check(bytes, count);
        return time.seconds();
    };
    static const double perByte = [&] {
        double least = secondsOf(plain.data(), plain.size());
        for (int i = 0; i < 2; ++i)
            least = std::min(least, secondsOf(plain.data(), plain.size()));
        return least / double(plain.size());
    }();
    const double most = MostWorkPerByte * perByte * double(size + FreeBytes);
    double seconds = secondsOf(data, size);
    // A disturbance does not count.
    for (int i = 0; i < 2 && seconds > most; ++i)
        seconds = std::min(seconds, secondsOf(data, size));
    if (seconds <= most)
        return;
    std::fprintf(stderr, "too much work: %zu bytes take %.0f times as long as plain text\n", size,
                 seconds / (perByte * double(size + FreeBytes)));
    std::abort();
}

/// A plain input: a text, and before it the bytes that select what the fuzzer does.
inline std::vector<uint8_t> PlainInput(std::vector<uint8_t> front, std::string_view start,
                                       std::string_view line, std::string_view end)
{
    constexpr std::size_t Size = 65'536;
    const auto add = [&front](std::string_view text) { front.insert(front.end(), text.begin(), text.end()); };
    add(start);
    while (front.size() < Size)
        add(line);
    add(end);
    return front;
}

} // namespace vmk
