#include "BookDocument.h"

#include "BookToDisplay.h"
#include "DisplayDocument.h"
#include "DisplayText.h"
#include "SaveBook.h"

namespace vmk {

bool BookToDocument(std::string bytes, DisplayDocument& document)
{
    if (!ConvertBookToDisplay(bytes, false))
        return false;
    document.loadPage(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return true;
}

BookFile DocumentToBook(const DisplayDocument& document)
{
    return FileOfDisplayText(TextOfDisplay(document, AngleMarks::Restore));
}

} // namespace vmk
