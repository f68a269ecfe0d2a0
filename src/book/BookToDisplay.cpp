#include "BookToDisplay.h"

#include "BookPage.h"
#include "BookParts.h"
#include "BookSeams.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CodePages.h"
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

} // namespace

bool ConvertBookToDisplay(std::string& text, bool preview)
{
    if (!SplitBinaryPart(text, preview)) {
        text.clear();
        return false;
    }

    PageRequest request;
    const std::optional<DisplayValues> ofPreview = preview ? PreviewValuesSeam()() : std::nullopt;
    request.values = ofPreview ? *ofPreview : DisplayValuesOfSettings();
    request.values.showNbsp = ShowNbsp == 1;
    request.inLineTags = InLineTagSet(InLineTags);
    ShowStatus(u"...converting xml to html: checking namespace..."_s);

    // To UTF-8, except for a book with references: only the parser can resolve them.
    if (!preview)
        DetectBookEncoding(text);
    ConvertBookToUtf8(text);
    request.xmlDeclaration = XmlDeclaration;
    if (BookHasCharRefs && WorkCodePage != CodePageUtf16)
        request.encoding = XmlEncoding::codePage(WorkCodePage);

    ProtectAngleBrackets(text);
    if (!preview)
        UpdateDescription(text);

    const std::optional<XmlTreeText> tree = TreeOfBook(text, request);
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
    return true;
}

} // namespace vmk
