#include "PageOfBook.h"

#include "BookToDisplay.h"
#include "Boxes.h"
#include "CommandLine.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace vmk {

std::optional<std::string> ReadBook(const QString& book)
{
    FileContent content = ReadContent(book);
    if (content.outcome == ReadOutcome::Ok)
        return std::move(content.bytes);
    PrintErrorLine(u"vmk: "_s + ShownName(book) + u": "_s + ReadFailureText(content));
    return std::nullopt;
}

std::optional<std::string> PageOfBook(const QString& book, std::string bytes)
{
    // The text that the editor would show in a box.
    QString remark;
    const SeamGuard box(BoxSeam(), [&remark](BoxKind, const QString& text, const QString&) {
        remark = text;
        return false;
    });
    const bool converted = ConvertBookToDisplay(bytes, false);
    if (!remark.isEmpty())
        PrintErrorLine(u"vmk: "_s + ShownName(book) + u": "_s + remark);
    return converted ? std::optional(std::move(bytes)) : std::nullopt;
}

bool WriteOutput(const QString& file, std::string_view bytes, Durability durability)
{
    const bool written = file.isEmpty()
        ? std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0
        : ReplaceContent(file, bytes, durability);
    if (!written)
        PrintErrorLine(u"vmk: "_s + (file.isEmpty() ? u"standard output"_s : ShownName(file))
                       + u": cannot be written"_s);
    return written;
}

} // namespace vmk
