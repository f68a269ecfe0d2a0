#include "DisplayText.h"
#include "BookTestSupport.h"
#include "BookToDisplay.h"
#include "DisplayCharacters.h"
#include "DisplayDocument.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "TextRange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace vmk::test {
namespace {

constexpr int RandomPages = 4000;
constexpr int EditsOfAPage = 6;

/// The text extracted from the saved page must equal the text taken directly from the lines.
void ExpectSameText(const DisplayDocument& document)
{
    const std::string page = document.savePage().toStdString();
    const std::string kept = TextOfDisplay(document, AngleMarks::Keep);
    const std::string expected = ResolveDisplayText(reference::ExtractText(page));
    ASSERT_TRUE(kept == expected) << page << "\n" << Difference(kept, expected);
    const std::string restored = TextOfDisplay(document, AngleMarks::Restore);
    const std::string expectedRestored = ResolveDisplayText(TextOfPage(page, AngleMarks::Restore));
    ASSERT_TRUE(restored == expectedRestored) << page << "\n" << Difference(restored, expectedRestored);
}

void ExpectSameText(const QByteArray& page)
{
    DisplayDocument document;
    document.loadPage(page);
    ExpectSameText(document);
}

/// Fragments that are special to a step of the extraction, and characters of every UTF-8 length.
QString TypedPiece(TextMaker& maker)
{
    const QStringList pieces = {u" "_s,
                                u"  "_s,
                                u"&"_s,
                                u"&lt;"_s,
                                u"&nbsp;"_s,
                                u"&amp;nbsp;"_s,
                                u"l"_s,
                                u"t;"_s,
                                u"<"_s,
                                u">"_s,
                                u"</HEAD>"_s,
                                u"<?xml version"_s,
                                QString(QChar(0x7F)),
                                QString(QChar(0xA0)),
                                QString(QChar(0x2039)),
                                QString(QChar(0x203A)),
                                u"\u044F"_s,
                                u"\u20AC"_s,
                                u"\U0001F600"_s,
                                QString(QChar(0xD83D)),
                                QString(QChar(0xDE00)),
                                QString(QChar(0xFEFF)),
                                u"\t"_s,
                                QString(QChar(1))};
    return pieces[static_cast<qsizetype>(maker.below(static_cast<size_t>(pieces.size())))];
}

Position RandomPlace(const DisplayDocument& document, TextMaker& maker)
{
    const auto line = static_cast<int>(maker.below(static_cast<size_t>(document.lineCount())));
    const auto length = static_cast<size_t>(document.line(line).text.size());
    return {line, static_cast<int>(maker.below(length + 1))};
}

void EditSomewhere(DisplayDocument& document, TextMaker& maker)
{
    const QStringList html = {u"a<B>&l</B>t;b"_s,
                              u"<SPAN title=\"a>b\">x</SPAN>"_s,
                              u"<SPAN title='</HEAD>'>x</SPAN>"_s,
                              u"<PRE>two  blanks </PRE><DIV> y </DIV>"_s,
                              u"x <BR>\r\n y<HR>z"_s,
                              u"blank &#13;&#10;end"_s,
                              u"<HEAD>x</HEAD>y"_s,
                              u"<IMG src=a.png alt='<'>"_s};
    document.setSelection(RandomPlace(document, maker), RandomPlace(document, maker));
    switch (maker.below(6)) {
    case 0:
        document.insertLineBreak();
        break;
    case 1:
        TextRange(document, document.selection().anchor, document.selection().anchor)
            .pasteHTML(html[static_cast<qsizetype>(maker.below(static_cast<size_t>(html.size())))]);
        break;
    case 2:
        document.deleteBackward();
        break;
    default:
        document.typeText(TypedPiece(maker));
        break;
    }
}

TEST(TextOfDisplay, AgreesWithTheStepsOnRandomPages)
{
    TextMaker maker(23);
    for (int i = 0; i < RandomPages && !testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        ExpectSameText(QByteArray::fromStdString(maker.page()));
    }
}

TEST(TextOfDisplay, AgreesWithTheStepsThroughRandomEdits)
{
    TextMaker maker(24);
    int straight = 0;
    int compared = 0;
    for (int i = 0; i < RandomPages / EditsOfAPage && !testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        DisplayDocument document;
        document.loadPage(QByteArray::fromStdString(maker.page()));
        for (int edit = 0; edit < EditsOfAPage; ++edit) {
            EditSomewhere(document, maker);
            ExpectSameText(document);
            straight += TextOfLines(document, AngleMarks::Keep) ? 1 : 0;
            ++compared;
        }
    }
    // Both paths were used.
    EXPECT_GT(straight, compared / 2);
    EXPECT_LT(straight, compared);
}

TEST(TextOfDisplay, AgreesWithTheStepsOnEveryBook)
{
    if (CorpusBooks().empty())
        GTEST_SKIP() << NoCorpus;
    ReadSettings(true);
    NamespaceErrorWarning = 0;
    for (const bool highlighted : {true, false}) {
        TagHighlighting = highlighted ? 1 : 0;
        for (const CorpusBook& book : CorpusBooks()) {
            SCOPED_TRACE(book.name);
            std::string page = book.bytes;
            ASSERT_TRUE(ConvertBookToDisplay(page, false));
            DisplayDocument document;
            document.loadPage(QByteArray::fromStdString(page));
            ExpectSameText(document);
            EXPECT_TRUE(TextOfLines(document, AngleMarks::Keep));
        }
    }
    ReadSettings(true);
}

TEST(TextOfDisplay, AnOpenQuoteInTheTextAddsNoMarkUp)
{
    ReadSettings(true);
    InLineTags = DefaultInLineTags();
    std::string page = "<a><p>write id=\"</p><p>x</p></a>";
    ASSERT_TRUE(ConvertBookToDisplay(page, false));
    EXPECT_THAT(page, testing::HasSubstr("<DIV style=\"</FONT>MARGIN-LEFT: 5px\">"));
    const std::string text = "<a>\r\n<p>write id=\"</p>\r\n<p>x</p>\r\n</a>\r\n";
    DisplayDocument document;
    document.loadPage(QByteArray::fromStdString(page));
    EXPECT_TRUE(TextOfDisplay(document, AngleMarks::Restore).ends_with(text));
    document.typeText(u"typed"_s);
    EXPECT_TRUE(TextOfDisplay(document, AngleMarks::Restore).ends_with(text.substr(3)));
}

TEST(TextOfDisplay, AgreesWithTheStepsOnUnusualPages)
{
    for (const char* page : {"", "text", "<DIV>a</DIV>", "<HTML><HEAD></HEAD><BODY>\r\n</BODY></HTML>",
                             "<BODY title='a>b'><DIV>x</DIV>", "<HTML>a<b</HEAD><BODY><DIV>x</DIV>",
                             "<HEAD>&l</HEAD><BODY>t;</BODY>", "<DIV>blank &#13;&#10;end</DIV>",
                             "<DIV>&#13;</DIV><DIV>a <B>\r\n</B> b</DIV>",
                             "<DIV>&#55357;<B>&#56832;</B>&#xD83D;<IMG>&#xDE00;</DIV>",
                             "<DIV>x<?xml version='1'?>y&lt;?xml version z</DIV>"}) {
        SCOPED_TRACE(page);
        ExpectSameText(QByteArray(page));
    }
}

} // namespace
} // namespace vmk::test
