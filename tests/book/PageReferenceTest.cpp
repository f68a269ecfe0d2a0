#include "BookPage.h"
#include "BookParts.h"
#include "BookReference.h"
#include "BookTestSupport.h"
#include "DisplayCharacters.h"
#include "PageLines.h"
#include "TreeLines.h"
#include "XmlDocument.h"

#include <gtest/gtest.h>

namespace vmk::test {
namespace {

constexpr int RandomTexts = 12000;

const std::vector<QStringList>& TagLists()
{
    static const std::vector<QStringList> lists = {
        DefaultInLineTags(),
        ToList({""}),
        ToList({}),
        ToList({"<p>", " </p> ", "<p>"}),
        ToList({"<strong>", "", "</strong>"}),
        ToList({"word", "<image/>", "</>"}),
        ToList({"<", ">", "a"}),
        ToList({"</x/>", "</x/>", "<image l:href=\"#i.jpg\"/>"}),
        ToList({"<date>", "<p>\r", "</p"}),
    };
    return lists;
}

TEST(TreeLinesAgainstSteps, AgreeOnRandomTexts)
{
    TextMaker maker(1);
    for (int i = 0; i < RandomTexts; ++i) {
        const std::string text = i % 2 == 0 ? maker.soup() : maker.book();
        const QStringList& tags = TagLists()[static_cast<size_t>(i) % TagLists().size()];
        for (const std::string end : {"\r", "\r\n"}) {
            const std::string expected = reference::PrepareTreeLines(text, end, ToStrings(tags));
            const std::string got = TreeLines(text, end, InLineTagSet(tags));
            ASSERT_EQ(got, expected) << "text " << i << ": " << text << Difference(got, expected);
        }
    }
}

TEST(PaintAttributesAgainstSteps, AgreeOnRandomTexts)
{
    TextMaker maker(2);
    for (int i = 0; i < RandomTexts; ++i) {
        const std::string text = maker.soup();
        std::string painted = text;
        PaintAttributes(painted);
        const std::string expected = reference::PaintAttributes(text);
        ASSERT_EQ(painted, expected) << "text " << i << ": " << text << Difference(painted, expected);
    }
}

TEST(UpdateDescriptionAgainstSteps, AgreesOnRandomTexts)
{
    TextMaker maker(3);
    const std::vector<std::string> pieces = {"<description>",
                                             "</description>",
                                             "<title-info>",
                                             "</title-info>",
                                             "<document-info>",
                                             "</document-info>",
                                             "<DOCUMENT-INFO>",
                                             "<author>",
                                             "</author>",
                                             "<program-used>",
                                             "</program-used>",
                                             "<Program-Used>",
                                             "<program-used id=\"a\">",
                                             "Foo",
                                             "vellumark",
                                             ", ",
                                             ",,",
                                             " ",
                                             "&nbsp;",
                                             "\xc2\xa0",
                                             "\xd0\xa0",
                                             "<b>",
                                             "<"};
    for (int i = 0; i < RandomTexts; ++i) {
        std::string text;
        for (size_t count = maker.below(14); count > 0; --count)
            text += pieces[maker.below(pieces.size())];
        std::string got = text;
        UpdateDescription(got);
        ASSERT_EQ(got, reference::UpdateDescription(text, "\xc2\xa0")) << text;
    }
}

std::vector<DisplayValues> ValueCombinations()
{
    std::vector<DisplayValues> all;
    for (const bool highlighting : {true, false})
        for (const bool nbsp : {true, false})
            for (const std::string tagWeight : {"bold", "normal"})
                for (const std::string weight : {"normal", "bold"})
                    for (const int shift : {5, 0, 17}) {
                        DisplayValues values = DefaultValues();
                        values.tagHighlighting = highlighting;
                        values.showNbsp = nbsp;
                        values.tagFontWeight = tagWeight;
                        values.fontWeight = weight;
                        values.nodeShift = shift;
                        all.push_back(values);
                    }
    return all;
}

void ComparePages(const std::string& text, PageRequest request, int codePage)
{
    reference::PageRequest plain;
    plain.values = ToReference(request.values);
    plain.inLineTags = request.inLineTags.entries();
    plain.xmlDeclaration = request.xmlDeclaration;
    plain.codePage = codePage;
    plain.ampersands = [](const std::string& lines) { return PageAmpersands(lines); };
    const std::string prepared = reference::PrepareTreeLines(text, "\r", plain.inLineTags);
    plain.wellFormed
        = !reference::HasParseError(text, codePage) && !reference::HasParseError(prepared, codePage);

    const std::optional<XmlTreeText> tree = TreeOfBook(text, request);
    ASSERT_EQ(tree.has_value(), plain.wellFormed) << text;
    if (!tree && codePage != 65001)
        return;
    const std::string expected = reference::Page(text, plain);
    const std::string got = tree ? PageWithTree(*tree, request) : PageWithoutTree(text, request);
    ASSERT_TRUE(got == expected) << "text: " << text << "\n" << Difference(got, expected);
}

std::string Protected(std::string text)
{
    std::string expected = reference::ReplaceAll(text, "&lt;", "\xe2\x80\xb9");
    expected = reference::ReplaceAll(expected, "&gt;", "\xe2\x80\xba");
    ProtectAngleBrackets(text);
    EXPECT_EQ(text, expected);
    return text;
}

TEST(PageAgainstSteps, AgreesOnRandomTexts)
{
    TextMaker maker(4);
    const std::vector<DisplayValues> values = ValueCombinations();
    const std::vector<std::string> declarations
        = {"<?xml version=\"1.0\" encoding=\"utf-8\"?>", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>",
           "<?xml version=\"1.0\"\r\n\t\t\tencoding='utf-8' <!-- >", "<?xml version=\"1.0>", "<?xml  >"};
    const std::vector<int> pages = {65001, 65001, 1251, 1252, 1250};
    int trees = 0;
    for (int i = 0; i < RandomTexts; ++i) {
        const auto n = static_cast<size_t>(i);
        const std::string text = Protected(i % 3 == 0 ? maker.soup() : maker.book());
        PageRequest request;
        request.values = values[n % values.size()];
        request.inLineTags = InLineTagSet(TagLists()[n % TagLists().size()]);
        request.xmlDeclaration = declarations[n % declarations.size()];
        const int codePage = pages[n % pages.size()];
        request.encoding = codePage == 65001 ? XmlEncoding::utf8() : XmlEncoding::codePage(codePage);
        ComparePages(text, request, codePage);
        if (HasFatalFailure())
            FAIL() << "text " << i;
        trees += TreeOfBook(text, request).has_value() ? 1 : 0;
    }
    EXPECT_GT(trees, RandomTexts / 3) << "too few texts with a tree";
}

} // namespace
} // namespace vmk::test
