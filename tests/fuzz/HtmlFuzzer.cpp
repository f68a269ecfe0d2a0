// Any bytes as HTML: as a page, and pasted into a page. Nothing crashes or hangs, lines are well formed,
// written HTML reads back unchanged, also after an edit, and undo restores the page.

#include "HtmlCheck.h"
#include "WorkBudget.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void Check(const std::string& fault)
{
    if (fault.empty())
        return;
    // The message quotes the page, which may contain any character.
    std::fwrite(fault.data(), 1, fault.size(), stderr);
    std::fputc('\n', stderr);
    std::abort();
}

/// Pastes the HTML over a range that its first bytes select, and undoes that.
void CheckPasting(const QByteArray& bytes)
{
    vmk::DisplayDocument document;
    document.loadPage(
        "<DIV id=FirstDiv>a<B>b</B>c</DIV><DIV><SPAN class=t>&lt;d&gt;</SPAN></DIV><DIV>e</DIV>");
    const QByteArray before = document.savePage();
    const auto placeFrom = [&](qsizetype i) {
        const int length = 9;
        return document.positionAt(bytes.size() > i ? static_cast<unsigned char>(bytes[i]) % length : 0);
    };
    vmk::TextRange range(document, placeFrom(0), placeFrom(1));
    range.pasteHTML(QString::fromUtf8(bytes));
    Check(vmk::reference::documentFault(document));
    while (document.undo()) { }
    Check(document.savePage() == before ? std::string() : "undo restored another page");
}

void CheckAll(const uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    Check(vmk::reference::pageFault(bytes));
    Check(vmk::reference::fragmentFault(QString::fromUtf8(bytes)));
    Check(vmk::reference::elementFault(bytes, 4));
    CheckPasting(bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const std::vector<uint8_t> plain
        = vmk::PlainInput({}, {}, "<P class=a>A <B>plain</B> paragraph.</P>\n", {});
    vmk::CheckWithBudget(CheckAll, plain, data, size);
    return 0;
}
