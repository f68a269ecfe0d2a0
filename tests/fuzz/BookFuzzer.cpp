// Any bytes may be opened as a book. A page must be created, in UTF-8 if the book allows it, and saved as a
// file; a file that was saved as a tree must be well-formed.

#include "BookDocument.h"
#include "BookToDisplay.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "DisplayDocument.h"
#include "DisplayToBook.h"
#include "SaveBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "WorkBudget.h"
#include "XmlDocument.h"

#include <cstdlib>
#include <string>

using namespace Qt::StringLiterals;

namespace {

void Check(const std::string& book, const QString& style, const QString& encoding)
{
    vmk::OutputStyle = style;
    vmk::OutputEncoding = encoding;
    vmk::DisplayDocument document;
    if (!vmk::BookToDocument(book, document))
        return;
    const vmk::SaveLayout layout = vmk::SaveLayoutOfSettings();
    const vmk::BookFile file = vmk::DocumentToBook(document);
    // Pictures are restored unchanged, whatever they contain.
    const bool tree
        = layout.style == vmk::LayoutStyle::TagsTree && !file.treeSkipped && layout.binaryPart.empty();
    if (tree && vmk::HasParseError(file.bytes, vmk::XmlEncoding::byDeclaration()))
        std::abort();
}

bool keepsText = false;

void CheckAll(const uint8_t* data, std::size_t size)
{
    // The first two bytes select how the book is saved and read.
    const std::string book(reinterpret_cast<const char*>(data) + 2, size - 2);
    vmk::TagHighlighting = data[1] & 1;
    keepsText = (data[1] & 4) != 0;
    vmk::InputEncoding = (data[1] & 2) != 0 ? u"utf-8"_s : u"original"_s;
    Check(book, vmk::OutputStyles[data[0] % 3], vmk::OutputEncodings[data[0] / 3 % 5]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const vmk::SeamGuard silent(vmk::BoxSeam(), [](auto&&...) { return false; });
    static const vmk::SeamGuard losses(vmk::LossSeam(), [](const vmk::BookLosses&) { return keepsText; });
    static const bool ready = [] {
        vmk::ReadSettings(true);
        vmk::NamespaceErrorWarning = 0;
        vmk::SoundsOn = 1;
        vmk::InLineTags = vmk::DefaultInLineTags();
        return true;
    }();
    if (!ready || size < 2)
        return 0;
    static const std::vector<uint8_t> plain
        = vmk::PlainInput({0, 1}, "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<FictionBook>",
                          "<p>A <strong>plain</strong> paragraph.</p>\n", "</FictionBook>");
    vmk::CheckWithBudget(CheckAll, plain, data, size);
    return 0;
}
