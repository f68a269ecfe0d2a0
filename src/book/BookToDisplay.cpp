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

/// Makes a book that was read without losses the open book.
void TakeKeptBook(KeptBook& kept, std::string& text)
{
    WorkEncodingName = std::move(kept.encoding.work.name);
    WorkCodePage = kept.encoding.work.codePage;
    WorkMetaTag = std::move(kept.encoding.work.metaTag);
    FileEncodingName = std::move(kept.encoding.file.name);
    FileCodePage = kept.encoding.file.codePage;
    FileMetaTag = std::move(kept.encoding.file.metaTag);
    XmlDeclaration = std::move(kept.encoding.declaration);
    BinaryPart = std::move(kept.binaryPart);
    BinaryCodePage = kept.binaryCodePage;
    BookHasCharRefs = BadBinaryPart = false;
    BookKeepsText = true;
    if (!kept.hasTree)
        WarnOfNamespaceError(false);
    text = std::move(kept.page);
}

} // namespace

Seam<bool(const BookLosses& losses)>& LossSeam()
{
    static Seam<bool(const BookLosses&)> seam([](const BookLosses&) { return false; });
    return seam;
}

bool ConvertBookToDisplay(std::string& text, bool preview)
{
    if (!preview && !IsBinaryPartDamaged(text)) {
        ShowStatus(u"...converting xml to html: checking namespace..."_s);
        const PageRequest request = RequestOfSettings(false);
        KeptBook kept = ReadKeptBook(text, request.values, request.inLineTags, InputEncoding);
        const bool asks = kept.losses.any() || kept.losses.replacedBytes > 0;
        if (!asks || LossSeam()(kept.losses)) {
            TakeKeptBook(kept, text);
            return true;
        }
    }
    if (!SplitBinaryPart(text, preview)) {
        text.clear();
        return false;
    }
    ShowStatus(u"...converting xml to html: checking namespace..."_s);
    ConvertAsEditor(text, preview);
    return true;
}

} // namespace vmk
