#include "BookGenerator.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace {

constexpr char Usage[]
    = "usage: make_book SIZE[K|M] [--seed N] [--encoding E] [--crlf] [--no-pictures]\n"
      "                 [--no-movable]\n"
      "Writes a valid book of about SIZE bytes to standard output; without movable elements,\n"
      "it is loaded without a question.\n"
      "E: utf-8, utf-16, windows-1250, windows-1251, windows-1252\n";

std::optional<size_t> ParseSize(const char* text)
{
    char* end = nullptr;
    const unsigned long long number = std::strtoull(text, &end, 10);
    const std::string_view unit(end);
    if (end == text || number > 100'000)
        return end == text || !unit.empty() || number > 4'000'000'000 ? std::nullopt
                                                                      : std::optional<size_t>(number);
    if (unit.empty())
        return number;
    if (unit == "K")
        return number * 1'000;
    return unit == "M" && number <= 4'000 ? std::optional<size_t>(number * 1'000'000) : std::nullopt;
}

std::optional<vmk::BookPlan> ParseArguments(int count, char** arguments)
{
    vmk::BookPlan plan;
    const std::optional<size_t> size = count > 1 ? ParseSize(arguments[1]) : std::nullopt;
    if (!size)
        return std::nullopt;
    plan.size = *size;
    for (int i = 2; i < count; ++i) {
        const std::string_view option = arguments[i];
        if (option == "--crlf")
            plan.lineEnd = "\r\n";
        else if (option == "--no-pictures")
            plan.pictures = false;
        else if (option == "--no-movable")
            plan.movable = false;
        else if (option == "--seed" && i + 1 < count)
            plan.seed = static_cast<uint32_t>(std::strtoul(arguments[++i], nullptr, 10));
        else if (option == "--encoding" && i + 1 < count && vmk::IsBookEncoding(arguments[i + 1]))
            plan.encoding = arguments[++i];
        else
            return std::nullopt;
    }
    return plan;
}

} // namespace

int main(int count, char** arguments)
{
    const std::optional<vmk::BookPlan> plan = ParseArguments(count, arguments);
    if (!plan) {
        std::fputs(Usage, stderr);
        return 2;
    }
    const std::string book = vmk::MakeBook(*plan);
    const bool written
        = std::fwrite(book.data(), 1, book.size(), stdout) == book.size() && std::fflush(stdout) == 0;
    if (!written)
        std::perror("make_book");
    return written ? 0 : 1;
}
