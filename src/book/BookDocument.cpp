#include "BookDocument.h"

#include "BookPage.h"
#include "BookToDisplay.h"
#include "DisplayDocument.h"
#include "DisplayText.h"
#include "OutlineSource.h"
#include "SaveBook.h"

namespace vmk {

bool BookToDocument(std::string bytes, DisplayDocument& document)
{
    std::optional<BookDisplay> display = DisplayOfBook(std::move(bytes), false);
    if (!display)
        return false;
    ShowDisplay(*std::move(display), document);
    return true;
}

void ShowDisplay(BookDisplay display, DisplayDocument& document)
{
    if (display.outline) {
        constexpr std::size_t FirstLines = 1'000;
        const std::string front = PageWithoutLines(display.values);
        OutlineLines lines(std::move(display.outline), display.values, document.tags());
        document.loadLines(QByteArray::fromStdString(front),
                           std::make_unique<OutlineSource>(std::move(lines), FirstLines));
        static_cast<void>(document.lineCount()); // loads all lines
    } else {
        document.loadPage(QByteArray::fromRawData(display.page.data(), qsizetype(display.page.size())));
    }
}

BookFile DocumentToBook(const DisplayDocument& document)
{
    return FileOfDisplayText(TextOfDisplay(document, AngleMarks::Restore));
}

} // namespace vmk
