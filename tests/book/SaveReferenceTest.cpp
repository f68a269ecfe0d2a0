#include "BookReference.h"
#include "BookTestSupport.h"
#include "CodePages.h"
#include "DisplayToBook.h"
#include "Encodings.h"

#include <gtest/gtest.h>

namespace vmk::test {
namespace {

constexpr int RandomPages = 12000;

TEST(ExtractionAgainstSteps, AgreesOnRandomPages)
{
    TextMaker maker(11);
    for (int i = 0; i < RandomPages; ++i) {
        const std::string page = maker.page();
        const std::string got = TextOfPage(page, AngleMarks::Keep);
        const std::string expected = reference::ExtractText(page);
        ASSERT_TRUE(got == expected) << "page " << i << ": " << page << "\n" << Difference(got, expected);
    }
}

struct StyleName
{
    LayoutStyle style;
    const char* name;
};
constexpr StyleName Styles[] = {{LayoutStyle::Compact, "compact"},
                                {LayoutStyle::LineEnds, "line ends"},
                                {LayoutStyle::TagsTree, "tags tree"}};

void CompareFiles(const std::string& page, const SaveLayout& layout, const char* styleName)
{
    reference::SaveRequest plain;
    plain.style = styleName;
    plain.declaration = layout.declaration;
    plain.inLineTags = layout.inLineTags.entries();
    plain.binaryPart = layout.binaryPart;
    plain.nbsp = layout.codePage == CodePageUtf8 ? "\xc2\xa0" : "\xa0";
    bool treeSkipped = false;
    std::string expected = reference::SaveText(page, plain, treeSkipped);
    if (layout.codePage != CodePageUtf8)
        Utf8ToCodePage(expected, layout.codePage);
    expected = reference::FinishFile(expected, plain, treeSkipped);

    const BookFile file = FileOfText(TextOfPage(page, AngleMarks::Restore), layout);
    EXPECT_EQ(file.treeSkipped, treeSkipped);
    ASSERT_TRUE(file.bytes == expected) << "page: " << page << "\n" << Difference(file.bytes, expected);
}

/// A page whose text is the given book.
std::string PageOf(const std::string& text)
{
    std::string page = reference::ReplaceAll(text, "<", "\x01");
    page = reference::ReplaceAll(page, ">", "</B>&gt;");
    page = reference::ReplaceAll(page, "\x01", "<B>&lt;");
    return "<HTML><HEAD></HEAD><BODY>\r\n<DIV>" + page + "</DIV></BODY></HTML>";
}

TEST(SaveAgainstSteps, AgreesOnRandomPages)
{
    TextMaker maker(12);
    const std::vector<QStringList> lists
        = {DefaultInLineTags(), ToList({""}), ToList({"<p>"}), ToList({"word"})};
    int trees = 0;
    for (int i = 0; i < RandomPages; ++i) {
        const auto n = static_cast<size_t>(i);
        const std::string page = i % 2 == 0 ? maker.page() : PageOf(maker.book());
        const SavedEncoding encoding
            = OutputEncodingInfo(std::vector{"utf-8", "windows-1251", "windows-1252", "windows-1250"}[n % 4]);
        SaveLayout layout;
        layout.style = Styles[n % 3].style;
        layout.declaration = encoding.declaration;
        layout.codePage = encoding.codePage;
        layout.inLineTags = InLineTagSet(lists[n % lists.size()]);
        layout.binaryPart = std::vector{"", "<binary id=\"a\">AA==</binary>",
                                        "<binary>\r\n  A\n</binary>"}[n % 3 == 0 ? 1 : n % 5 % 3];
        CompareFiles(page, layout, Styles[n % 3].name);
        if (HasFatalFailure())
            FAIL() << "page " << i;
        trees += layout.style == LayoutStyle::TagsTree
                && !FileOfText(TextOfPage(page, AngleMarks::Restore), layout).treeSkipped
            ? 1
            : 0;
    }
    EXPECT_GT(trees, RandomPages / 10) << "too few pages with a tree";
}

} // namespace
} // namespace vmk::test
