#include "BookToDisplay.h"

#include "BookPage.h"
#include "BookParts.h"
#include "BookReading.h"
#include "BookSeams.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CodePages.h"
#include "DisplayCharacters.h"
#include "DisplayValuesOfSettings.h"
#include "EmptyPage.h"
#include "Encodings.h"
#include "MainWindowSeams.h"
#include "OutlinedBook.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Warns that the book will be shown without a tree. The text means any failure to parse; it is kept because
/// users know it.
void WarnOfNamespaceError(bool preview)
{
    // The setting applies to a preview too. There the page of the open book is kept: it has no other copy.
    if (NamespaceErrorWarning != 1)
        return;
    if (!preview)
        ShowEmptyPage({.skipStatus = true});
    InformationBox(u"Namespace error. Tree view is skipped"_s, u"Vellumark"_s);
}

/// Converts a text whose references are unresolved. The page is UTF-8 whatever the book's encoding: other
/// bytes would not survive in the display.
void ConvertUnresolved(std::string& text)
{
    RestoreAngleBrackets(text);
    if (WorkCodePage == CodePageUtf16)
        UnicodeToCodePage(text, CodePageUtf8);
    else
        CodePageToUtf8(text, WorkCodePage);
    ProtectAngleBrackets(text);
}

/// Returns the request of a page with the current settings.
PageRequest RequestOfSettings(bool preview)
{
    PageRequest request;
    const std::optional<DisplayValues> ofPreview = preview ? PreviewValuesSeam()() : std::nullopt;
    request.values = ofPreview ? *ofPreview : DisplayValuesOfSettings();
    request.values.showNbsp = ShowNbsp == 1;
    request.inLineTags = InLineTagSet(InLineTags);
    return request;
}

/// Converts a book whose binary part is cut off by the editor's own rules.
void ConvertAsEditor(std::string& text, bool preview)
{
    PageRequest request = RequestOfSettings(preview);

    // To UTF-8, except for a book with references: only the parser can resolve them.
    if (!preview) {
        DetectBookEncoding(text);
        BinaryCodePage = WorkCodePage == CodePageUtf16 ? CodePageUtf8 : WorkCodePage;
        BookKeepsText = false;
    }
    ConvertBookToUtf8(text);
    request.xmlDeclaration = XmlDeclaration;
    if (BookHasCharRefs && WorkCodePage != CodePageUtf16)
        request.encoding = XmlEncoding::codePage(WorkCodePage);

    ProtectAngleBrackets(text);
    if (!preview)
        UpdateDescription(text);

    std::string protectedText = text;
    ProtectNumericAngles(protectedText);
    std::optional<XmlTreeText> tree = TreeOfBook(protectedText, request);
    std::string().swap(protectedText);
    if (tree) {
        std::string().swap(text); // the tree contains all of it
        text = PageWithTree(*tree, request);
    } else {
        WarnOfNamespaceError(preview);
        if (BookHasCharRefs)
            ConvertUnresolved(text);
        text = PageWithoutTree(std::move(text), request);
    }
    BookHasCharRefs = false;
}

/// Makes the encoding and the pictures of a book that was read without losses those of the open book.
template <typename ReadBook>
void TakeBook(ReadBook& book)
{
    WorkEncodingName = std::move(book.encoding.work.name);
    WorkCodePage = book.encoding.work.codePage;
    WorkMetaTag = std::move(book.encoding.work.metaTag);
    FileEncodingName = std::move(book.encoding.file.name);
    FileCodePage = book.encoding.file.codePage;
    FileMetaTag = std::move(book.encoding.file.metaTag);
    XmlDeclaration = std::move(book.encoding.declaration);
    BinaryPart = std::move(book.binaryPart);
    BinaryCodePage = book.binaryCodePage;
    BookHasCharRefs = BadBinaryPart = false;
    BookKeepsText = true;
}

/// Whether a book is read without losses: if there are none, or if that is the answer to the question.
bool KeepsText(const BookLosses& losses)
{
    const bool asks = losses.any() || losses.replacedBytes > 0;
    return !asks || LossSeam()(losses);
}

/// Reads a book without losses. Returns nothing, with the bytes unchanged, if it is to be read by the rules
/// of the editor.
std::optional<BookDisplay> KeptDisplay(std::string& bytes)
{
    ShowStatus(u"...converting xml to html: checking namespace..."_s);
    const PageRequest request = RequestOfSettings(false);
    if (auto book = ReadOutlinedBook(bytes, request.values.showNbsp, request.inLineTags, InputEncoding)) {
        if (!KeepsText(book->losses)) {
            bytes = book->takeBytes();
            return std::nullopt;
        }
        TakeBook(*book);
        return BookDisplay{{}, std::move(book->text), request.values};
    }
    KeptBook book = ReadKeptBook(bytes, request.values, request.inLineTags, InputEncoding);
    if (!KeepsText(book.losses))
        return std::nullopt;
    TakeBook(book);
    if (!book.hasTree)
        WarnOfNamespaceError(false);
    return BookDisplay{std::move(book.page), nullptr, {}};
}

} // namespace

Seam<bool(const BookLosses& losses)>& LossSeam()
{
    static Seam<bool(const BookLosses&)> seam([](const BookLosses&) { return false; });
    return seam;
}

std::optional<BookDisplay> DisplayOfBook(std::string bytes, bool preview)
{
    if (!preview && !IsBinaryPartDamaged(bytes)) {
        if (std::optional<BookDisplay> kept = KeptDisplay(bytes))
            return kept;
    }
    if (!SplitBinaryPart(bytes, preview))
        return std::nullopt;
    ShowStatus(u"...converting xml to html: checking namespace..."_s);
    ConvertAsEditor(bytes, preview);
    return BookDisplay{std::move(bytes), nullptr, {}};
}

bool ConvertBookToDisplay(std::string& text, bool preview)
{
    std::optional<BookDisplay> display = DisplayOfBook(std::move(text), preview);
    text.clear();
    if (!display)
        return false;
    text = display->outline ? PageWithOutline(*display->outline, display->values) : std::move(display->page);
    return true;
}

} // namespace vmk
