#include "PageFileThread.h"

#include "BookPage.h"
#include "ScratchFile.h"

#include <algorithm>
#include <new>
#include <string>
#include <system_error>

namespace vmk {

namespace {

void WritePage(ScratchFile& file, OutlinedText& book, const DisplayValues& values,
               const std::stop_token& stop)
{
    constexpr std::size_t LinesOfPiece = 4'000;
    PageOfLines page(book, values);
    std::string piece;
    for (std::size_t line = 0; line < book.lineCount() && !stop.stop_requested(); line += LinesOfPiece) {
        piece.clear();
        page.append(line, std::min(line + LinesOfPiece, book.lineCount()), piece);
        if (!file.append(piece))
            return;
        book.passed(OutlinedText::Reader::PageFile, line + LinesOfPiece);
    }
}

} // namespace

bool PageFileThread::write(const QString& path, std::shared_ptr<OutlinedText> book,
                           const DisplayValues& values)
{
    stop();
    auto file = std::make_shared<ScratchFile>(path);
    if (!*file)
        return false;
    const auto work = [file, book = std::move(book), values](const std::stop_token& token) {
        try {
            WritePage(*file, *book, values, token);
        } catch (const std::bad_alloc&) {
            return; // as on a full disk
        }
    };
    try {
        thread = std::jthread(work);
    } catch (const std::system_error&) {
        work({});
    }
    return true;
}

void PageFileThread::stop()
{
    thread.request_stop();
    wait();
}

void PageFileThread::wait()
{
    if (thread.joinable())
        thread.join();
}

} // namespace vmk
