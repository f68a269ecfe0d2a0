#include "BookDocument.h"
#include "BookParts.h"
#include "BookTestSupport.h"
#include "BookToDisplay.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CodePages.h"
#include "Desktop.h"
#include "DisplayCharacters.h"
#include "DisplayDocument.h"
#include "DisplayToBook.h"
#include "EmptyPage.h"
#include "Encodings.h"
#include "MainWindowSeams.h"
#include "SaveBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace vmk::test {
namespace {

/// Conversions with the default settings; records the messages of the program.
class Conversion : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ReadSettings(true);
        InLineTags = DefaultInLineTags();
        SoundsOn = 1;
        BinaryPart.clear();
    }

    std::string page(std::string book)
    {
        EXPECT_TRUE(ConvertBookToDisplay(book, false));
        return book;
    }

    /// The lines of the page, without its frame.
    std::string lines(const std::string& book)
    {
        std::string all = page(book);
        all.erase(0, all.find("bgColor="));
        all.erase(0, all.find("\r\n") + 2);
        return all.substr(0, all.size() - std::string("</BODY></HTML>").size());
    }

    BookFile saved(const std::string& book, const QString& style = u"tags tree"_s,
                   const QString& encoding = u"original"_s)
    {
        OutputStyle = style;
        OutputEncoding = encoding;
        DisplayDocument document;
        EXPECT_TRUE(BookToDocument(book, document));
        return DocumentToBook(document);
    }

    QStringList boxes;
    QStringList statuses;
    SeamGuard<bool(BoxKind, const QString&, const QString&)> boxGuard{
        BoxSeam(), [this](BoxKind, const QString& text, const QString&) {
            boxes.append(text);
            return false;
        }};
    SeamGuard<void(const QString&)> statusGuard{StatusSeam(),
                                                [this](const QString& text) { statuses.append(text); }};
};

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

TEST_F(Conversion, GenuineMarksAreSavedAsEntities)
{
    const BookFile file = saved(Declaration + "<a>\xe2\x80\xb9x\xe2\x80\xba &lt;y&gt;</a>");
    EXPECT_EQ(file.bytes, Declaration + "\r\n<a>&lt;x&gt; &lt;y&gt;</a>");
}

TEST_F(Conversion, AGenuineMarkerIsSavedAsANonBreakingSpace)
{
    EXPECT_THAT(saved(Declaration + "<a>x\x7fy</a>").bytes, testing::HasSubstr("x\xc2\xa0y"));
}

TEST_F(Conversion, TheMarkOfUtf8StaysInFrontOfADamagedBookAndIsNotSaved)
{
    const std::string mark = "\xef\xbb\xbf";
    EXPECT_THAT(lines(mark + Declaration + "<a>"),
                testing::StartsWith("<DIV id=FirstDiv>" + mark + "<SPAN class=t>&lt;?xml"));
    EXPECT_EQ(saved(mark + Declaration + "<a>").bytes, Declaration + "<a>");
    EXPECT_EQ(saved(mark + Declaration + "<a/>").bytes, Declaration + "\r\n<a/>");
}

TEST_F(Conversion, ABookHasItsDeclarationHoweverShortItIs)
{
    // So that no saved text is too short to be a book.
    SaveLayout layout;
    for (const char* encoding : {"windows-1251", "utf-8"})
        for (const LayoutStyle style : {LayoutStyle::Compact, LayoutStyle::LineEnds, LayoutStyle::TagsTree})
            for (const bool keeps : {false, true})
                for (const std::string text :
                     {"", " ", "\r\n", "a", "<", "<a/>", "<?xml", "<?xml ", "<?xml version",
                      "<?xml version=", "<?xml version \r\n", "<?xml?>", "\xef\xbb\xbf", "\xc2\xa0"}) {
                    const SavedEncoding target = OutputEncodingInfo(encoding);
                    layout.style = style;
                    layout.declaration = target.declaration;
                    layout.codePage = target.codePage;
                    layout.keepsText = keeps;
                    const std::string bytes = FileOfText(text, layout).bytes;
                    EXPECT_TRUE(bytes.starts_with("<?xml version")) << bytes << " of " << text;
                }
}

TEST_F(Conversion, ABookOfOneLineHasNoMargins)
{
    EXPECT_EQ(lines("<a>text</a>"),
              "<DIV id=FirstDiv><SPAN class=t>&lt;a&gt;</SPAN>text<SPAN class=t>&lt;/a&gt;</SPAN></DIV>");
}

TEST_F(Conversion, AttributesInTextArePaintedAndStay)
{
    const std::string book = Declaration + "<a>see id=\"x\"</a>";
    EXPECT_THAT(lines(book), testing::HasSubstr("see<FONT class=n> id=</FONT><FONT class=v>\"x\"</FONT>"));
    EXPECT_THAT(saved(book).bytes, testing::HasSubstr("<a>see id=\"x\"</a>"));
}

TEST_F(Conversion, NamespacesArePaintedWithoutTheirValues)
{
    EXPECT_EQ(lines("<a xmlns=\"u\" xmlns:l=\"v\" l:href=\"w\"/>"),
              "<DIV id=FirstDiv><SPAN class=t>&lt;a<FONT class=n> xmlns=</FONT>\"u\"<FONT class=n> "
              "xmlns:l=</FONT>\"v\""
              " l<FONT class=n>:href=</FONT><FONT class=v>\"w\"</FONT>/&gt;</SPAN></DIV>");
}

TEST_F(Conversion, AttributesStayInTheirOrder)
{
    EXPECT_THAT(saved("<a b=\"1\" xmlns:x=\"u\" x:c=\"2\" xmlns=\"v\"/>").bytes,
                testing::HasSubstr("<a b=\"1\" xmlns:x=\"u\" x:c=\"2\" xmlns=\"v\"/>"));
}

TEST_F(Conversion, TagsInACommentStayInItsSpan)
{
    EXPECT_EQ(lines("<a><!-- binary --></a>"),
              "<DIV id=FirstDiv><SPAN class=t>&lt;a&gt;</SPAN></DIV>\r<DIV style=\"MARGIN-LEFT: 5px\"><SPAN "
              "class=c>&lt;!-- binary "
              "--&gt;</SPAN></DIV>\r<DIV><SPAN class=t>&lt;/a&gt;</SPAN></DIV>");
}

TEST_F(Conversion, ReferencesOfACodePageBookBecomeCharacters)
{
    const std::string head = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>";
    // A letter and a reference to it, a reference to a character that is not in the code page, and one in
    // hexadecimal.
    const std::string text = lines(head + "<a>\xc6&#1078;&#1488;&#x5d1;</a>");
    EXPECT_THAT(text, testing::HasSubstr("\xd0\x96\xd0\xb6\xd7\x90\xd7\x91"));
    EXPECT_EQ(text.find('?', text.find("&gt;")), std::string::npos);
    EXPECT_FALSE(BookHasCharRefs);
}

TEST_F(Conversion, ProtectedBracketsOfSuchABookAreReadInItsCodePage)
{
    const std::string head = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>";
    EXPECT_THAT(lines(head + "<a>&lt;&#1078;</a>"), testing::HasSubstr("\xd0\xb2\xd0\x82\xe2\x84\x96"));
    EXPECT_THAT(saved(head + "<a>&lt;&#1078;</a>").bytes, testing::Not(testing::HasSubstr("&lt;")));
    EXPECT_THAT(saved(head + "<a>&lt;\xe6</a>").bytes, testing::HasSubstr("<a>&lt;\xe6</a>"))
        << "without references";
}

TEST_F(Conversion, ReferencesOfAUtf8BookAreResolvedByTheParserAlone)
{
    EXPECT_THAT(lines(Declaration + "<a>\xd0\x96&#1078;</a>"), testing::HasSubstr("\xd0\x96\xd0\xb6"));
}

TEST_F(Conversion, ABrokenBookOfACodePageIsShownInUtf8)
{
    NamespaceErrorWarning = 0;
    const std::string text
        = lines("<?xml version=\"1.0\" encoding=\"windows-1251\"?><a>\xc6&#1078;&lt;<b></a>");
    EXPECT_TRUE(IsValidUtf8(text));
    EXPECT_THAT(text, testing::HasSubstr("\xd0\x96&amp;" + std::string(DisplayGuard) + "#1078;\xe2\x80\xb9"));
}

TEST_F(Conversion, ABrokenBookIsShownWithoutMarginsAfterABox)
{
    EXPECT_THAT(lines("<a>\t<p>x</p><b></a>"), testing::Not(testing::HasSubstr("MARGIN")));
    EXPECT_EQ(boxes, QStringList(u"Namespace error. Tree view is skipped"_s));
    boxes.clear();
    NamespaceErrorWarning = 0;
    (void)lines("<a>");
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(Conversion, LineEndsThatPartATagAreNoLossOfTheBook)
{
    // The joined tag is not well-formed: the text is shown without a tree.
    const std::string text = lines("<a\nb=\"c\">text</a>");
    EXPECT_THAT(text, testing::HasSubstr("&lt;ab=\"c\"&gt;"));
    EXPECT_THAT(text, testing::HasSubstr("text"));
}

TEST_F(Conversion, TabsInAParagraphAddNoLevel)
{
    EXPECT_EQ(lines("<a><p>x\t\t\t\ty</p></a>"),
              "<DIV id=FirstDiv><SPAN class=t>&lt;a&gt;</SPAN></DIV>\r<DIV style=\"MARGIN-LEFT: 5px\"><SPAN "
              "class=t>&lt;p&gt;</SPAN>"
              "x\t\t\t\ty<SPAN class=t>&lt;/p&gt;</SPAN></DIV>\r<DIV><SPAN class=t>&lt;/a&gt;</SPAN></DIV>");
}

TEST_F(Conversion, AnEmptyParagraphIsALine)
{
    EXPECT_THAT(lines("<a><p/></a>"),
                testing::HasSubstr("<DIV style=\"MARGIN-LEFT: 5px\"><SPAN class=t>&lt;p/&gt;</SPAN></DIV>"));
}

TEST_F(Conversion, ALineOfOneBlankDisappears)
{
    EXPECT_THAT(lines("<a>x<i/>&#10; &#10;</a>"), testing::Not(testing::HasSubstr("<DIV> </DIV>")));
}

TEST_F(Conversion, TheBreakAfterAnInLineImageBelongsToTheText)
{
    EXPECT_THAT(lines("<a><p>x<image/>y</p></a>"), testing::HasSubstr("&lt;image/&gt;</SPAN></DIV>\r<DIV>y"));
    EXPECT_THAT(saved(Declaration + "<a><p>x<image/>y</p></a>").bytes,
                testing::HasSubstr("<p>x<image/>\r\ny</p>"));
}

TEST_F(Conversion, BlanksBetweenInLineElementsStay)
{
    const std::string paragraph = "<p><strong>a</strong> <emphasis>b</emphasis></p>";
    EXPECT_THAT(saved(Declaration + "<a>" + paragraph + "</a>").bytes, testing::HasSubstr(paragraph));
    EXPECT_THAT(saved(Declaration + "<b> <p>x</p> <p>y</p> </b>").bytes,
                testing::HasSubstr("<b>\r\n\t<p>x</p>\r\n\t<p>y</p>\r\n</b>"));
}

TEST_F(Conversion, AListOfOneEmptyEntryRemovesAllBreaks)
{
    InLineTags = QStringList(QString());
    EXPECT_THAT(lines("<a><p>x<image/>y</p></a>"), testing::HasSubstr("&lt;image/&gt;</SPAN>y"));
    EXPECT_THAT(lines("<a><p>x</p></a>"), testing::HasSubstr("MARGIN-LEFT: 5px"))
        << "a tree is still produced";
}

TEST_F(Conversion, ACommentEndsAtItsFirstAngleBracket)
{
    EXPECT_THAT(lines("<a>x<!-- a > b --></a>"),
                testing::HasSubstr("<SPAN class=c>&lt;!-- a &gt;</SPAN> b --&gt;</SPAN>"));
}

TEST_F(Conversion, ACommentOfSeveralLinesIsJoined)
{
    EXPECT_THAT(lines("<a><p>x</p><!-- one\r\ntwo\nthree --></a>"),
                testing::HasSubstr("&lt;!-- onetwothree --&gt;"));
}

TEST_F(Conversion, DeepNestingIsNoMatter)
{
    std::string book;
    for (int i = 0; i < 4000; ++i)
        book += "<d>";
    for (int i = 0; i < 4000; ++i)
        book += "</d>";
    EXPECT_THAT(lines(book), testing::HasSubstr("MARGIN-LEFT: 19995px"));
}

TEST_F(Conversion, NbspIsShownByTheMarkerAndRestored)
{
    const std::string book = Declaration + "<a>x\xc2\xa0y</a>";
    EXPECT_THAT(lines(book), testing::HasSubstr("x\x7fy"));
    EXPECT_THAT(saved(book).bytes, testing::HasSubstr("x\xc2\xa0y"));
    ShowNbsp = 0;
    EXPECT_THAT(lines(book), testing::HasSubstr("x\xc2\xa0y"));
}

// ------------------------------------------------------------------ preparation

TEST_F(Conversion, ABinaryPartWithoutAnEndIsRejected)
{
    std::string book = "<a><!-- <binary --></a>";
    EXPECT_FALSE(ConvertBookToDisplay(book, false));
    EXPECT_TRUE(book.empty());
    EXPECT_TRUE(BadBinaryPart);
    EXPECT_EQ(boxes, QStringList(u"Cannot load file: bad binary part"_s));
    EXPECT_TRUE(statuses.contains(u"cannot open file: bad binary part"_s));
}

TEST_F(Conversion, ABinaryEndBeforeTheFirstBinaryIsRejected)
{
    std::string book = "<a></binary><binary>x</a>";
    EXPECT_FALSE(SplitBinaryPart(book, true));
    EXPECT_FALSE(BadBinaryPart) << "a preview leaves it alone";
    EXPECT_EQ(book, "<a></binary><binary>x</a>");
}

TEST_F(Conversion, ARejectedPreviewIsReportedInItsOwnWindow)
{
    QTemporaryDir folder;
    SampleEmptyPageFile = folder.filePath(u"sample.htm"_s);
    QStringList events;
    const SeamGuard navigate(NavigateSeam(), [&events](const QString& file, bool preview) {
        EXPECT_TRUE(preview);
        events.append(file);
    });
    const SeamGuard caption(CaptionSeam(), [&events](const QString& text, bool preview) {
        EXPECT_TRUE(preview);
        events.append(text);
    });
    const SeamGuard sound(SoundSeam(),
                          [&events](const QString& file) { events.append(file.section(u'/', -1)); });
    std::string book = "<a><binary></a>";
    EXPECT_FALSE(ConvertBookToDisplay(book, true));
    EXPECT_EQ(
        events,
        QStringList({u"Cannot open file: bad binary part"_s, u"ParseError.wav"_s, SampleEmptyPageFile}));
    EXPECT_EQ(boxes, QStringList(u"Cannot load file: bad binary part"_s));
    EXPECT_TRUE(statuses.isEmpty()) << "the main window receives no status";
    SampleEmptyPageFile.clear();
}

TEST_F(Conversion, APreviewLeavesPageAndPicturesOfTheOpenBookAlone)
{
    QTemporaryDir folder;
    EmptyPageFile = folder.filePath(u"empty.htm"_s);
    int blanked = 0;
    const SeamGuard navigate(NavigateSeam(), [&blanked](const QString&, bool) { ++blanked; });
    BinaryPart = "<binary id=\"open\">AA==</binary>";
    std::string sample = "<FictionBook><p>x<binary id=\"sample\">BB==</binary></FictionBook>";
    EXPECT_TRUE(ConvertBookToDisplay(sample, true));
    EXPECT_EQ(boxes, QStringList(u"Namespace error. Tree view is skipped"_s)) << "the setting counts";
    EXPECT_EQ(blanked, 0);
    EXPECT_EQ(BinaryPart, "<binary id=\"open\">AA==</binary>");
    EXPECT_THAT(sample, testing::Not(testing::HasSubstr("sample")));
    EmptyPageFile.clear();
    BinaryPart.clear();
}

TEST_F(Conversion, TextAfterTheBinariesIsRemoved)
{
    std::string book
        = "<FictionBook><b/><binary id=\"1\">AA==</binary> <binary>B</binary> x <!-- c --></FictionBook>";
    EXPECT_TRUE(SplitBinaryPart(book, false));
    EXPECT_EQ(book, "<FictionBook><b/></FictionBook>");
    EXPECT_EQ(BinaryPart, "<binary id=\"1\">AA==</binary> <binary>B</binary>");
}

TEST(Description, NamesTheProgramOnce)
{
    std::string text
        = "<description><document-info><program-used>Foo</program-used></document-info></description>";
    UpdateDescription(text);
    EXPECT_EQ(text,
              "<description><document-info><program-used>Foo, "
              "Vellumark</program-used></document-info></description>");
    const std::string named = text;
    UpdateDescription(text);
    EXPECT_EQ(text, named);
}

TEST(Description, KeepsLettersThatContainTheByteOfANonBreakingSpace)
{
    std::string text = "<program-used>\xd0\xa0\xd0\xb5\xd0\xb4</program-used>";
    UpdateDescription(text);
    EXPECT_EQ(text, "<program-used>\xd0\xa0\xd0\xb5\xd0\xb4, Vellumark</program-used>");
}

// ------------------------------------------------------------------ extraction and saving

TEST(Extraction, TypedMarkUpIsMarkUp)
{
    EXPECT_EQ(TextOfPage("<DIV>&lt;b&gt;x &amp; y</DIV>", AngleMarks::Keep), "<b>x &amp; y");
}

TEST(Extraction, TwoTypedBlanksAreSavedAsTwo)
{
    EXPECT_EQ(TextOfPage("<DIV>a &nbsp;b \r\nc\x7f</DIV>", AngleMarks::Keep), "a  b c\xc2\xa0");
}

TEST(Extraction, ANonBreakingSpaceIsSavedAsABlank)
{
    // The display writes it so; only the marker is protected.
    EXPECT_EQ(TextOfPage("<DIV>a&nbsp;b</DIV>", AngleMarks::Keep), "a b");
}

TEST(Extraction, TextBeforeTheDeclarationIsRemoved)
{
    EXPECT_EQ(TextOfPage("<DIV>typed</DIV>\r\n<DIV>&lt;?xml version=\"1.0\"?&gt;</DIV>", AngleMarks::Keep),
              "<?xml version=\"1.0\"?>");
}

TEST_F(Conversion, ADeclarationInACommentRemovesNothing)
{
    const std::string book = "<a><p>keep</p><!-- <?xml version=\"1.0\"?> --></a>";
    for (const QString& style : OutputStyles)
        EXPECT_THAT(saved(book, style).bytes, testing::HasSubstr("<p>keep</p>")) << style.toStdString();
    EXPECT_EQ(TextOfPage("&lt;a&gt;&lt;?xml version", AngleMarks::Keep), "<a><?xml version");
}

TEST_F(Conversion, GetFbTextKeepsTheMarksForPositions)
{
    const SeamGuard display(DisplayTextSeam(), [](AngleMarks marks) {
        return TextOfPage("<HEAD></HEAD>x&lt;?xml version=\"1.0\"?&gt;\r\n&lt;a&gt;\xe2\x80\xb9&lt;/a&gt;",
                          marks);
    });
    EXPECT_EQ(GetFbTextFromDisplay(true), "<?xml version=\"1.0\"?>\r\n<a>\xe2\x80\xb9</a>");
    EXPECT_EQ(statuses.first(), u"...getting Fiction Book text...wait, please"_s);
}

TEST_F(Conversion, AnUneditedBookOfACodePageKeepsItsDeclaration)
{
    const std::string head = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>";
    EXPECT_EQ(saved(head + "<a>\xc6</a>").bytes, head + "\r\n<a>\xc6</a>");
}

TEST_F(Conversion, AUnicodeBookIsSavedAsUtf8)
{
    std::string book("\xff\xfe", 2);
    for (const char c : std::string("<?xml version=\"1.0\"?><a>plain</a>"))
        book += {c, '\0'};
    EXPECT_EQ(saved(book).bytes, Declaration + "\r\n<a>plain</a>");
}

TEST_F(Conversion, AnUnknownDeclarationIsReplacedByUtf8)
{
    EXPECT_TRUE(saved("<?xml version=\"1.0\" encoding=\"koi8-r\"?><a/>").bytes.starts_with(Declaration));
}

TEST_F(Conversion, CompactIsOneLineAndTheBinariesAreSeparate)
{
    const BookFile file = saved(
        Declaration + "<FictionBook><p>x</p><!-- c --><binary>AA==</binary></FictionBook>", u"compact"_s);
    EXPECT_EQ(file.bytes,
              Declaration + "<FictionBook> <p>x</p> <!-- c -->\r\n<binary>AA==</binary>\r\n</FictionBook>");
}

TEST_F(Conversion, ADamagedTreeIsSavedByLinesAndReported)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"book.fb2"_s);
    const SeamGuard filled(IsBookEmptySeam(), [] { return false; });
    const SeamGuard display(DisplayTextSeam(), [](AngleMarks) { return std::string("<b>\r\n<p>x"); });
    FileEncodingName = "utf-8";
    EXPECT_TRUE(SaveBook(path, SaveReport::WithoutSound));
    EXPECT_EQ(statuses.last(), u"Namespace error: tree on save skipped. File saved as: "_s + path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), Declaration + "\r\n<b>\r\n<p>x");
}

TEST_F(Conversion, EveryEndOfTheBookGetsTheBinaries)
{
    SaveLayout layout;
    layout.style = LayoutStyle::LineEnds;
    layout.declaration = Declaration;
    layout.codePage = CodePageUtf8;
    layout.binaryPart = "<binary/>";
    const std::string bytes = FileOfText("<!-- </FictionBook> --></FictionBook>", layout).bytes;
    EXPECT_EQ(bytes.find("<binary/>") == bytes.rfind("<binary/>"), false) << bytes;
}

TEST_F(Conversion, ABookWhoseEndIsDamagedKeepsItsBinaries)
{
    BinaryPart = "<binary>AA==</binary>";
    FileEncodingName = "utf-8";
    for (const QString& style : OutputStyles) {
        OutputStyle = style;
        std::string book = FileOfText("<FictionBook>x</FictonBook>", SaveLayoutOfSettings()).bytes;
        EXPECT_TRUE(book.ends_with("\r\n<binary>AA==</binary>\r\n")) << book;
        BinaryPart.clear();
        EXPECT_TRUE(SplitBinaryPart(book, false));
        EXPECT_EQ(BinaryPart, "<binary>AA==</binary>") << "they come back with the next load";
    }
    BinaryPart.clear();
}

TEST_F(Conversion, BinaryNamesOutsideAsciiHaveTheEncodingOfTheBook)
{
    const std::string cyrillic = "<?xml version=\"1.0\" encoding=\"windows-1251\"?><FictionBook>";
    const std::string book = cyrillic + "<binary id=\"\xc6.png\">AA==</binary></FictionBook>";
    EXPECT_THAT(saved(book).bytes, testing::HasSubstr("id=\"\xc6.png\"")) << "as it is";
    const std::string utf8 = saved(book, u"tags tree"_s, u"utf-8"_s).bytes;
    EXPECT_THAT(utf8, testing::HasSubstr("id=\"\xd0\x96.png\""));
    EXPECT_THAT(saved(utf8, u"compact"_s, u"windows-1251"_s).bytes, testing::HasSubstr("id=\"\xc6.png\""));
    BinaryPart.clear();
}

TEST_F(Conversion, NothingIsSavedOfAnEmptyDisplay)
{
    EXPECT_FALSE(SaveBook(u"/nowhere/book.fb2"_s));
    EXPECT_EQ(boxes, QStringList(u"empty book - nothing to save"_s));
}

TEST_F(Conversion, AFailedWriteIsReportedEvenWhenQuiet)
{
    const SeamGuard filled(IsBookEmptySeam(), [] { return false; });
    const SeamGuard display(DisplayTextSeam(), [](AngleMarks) { return std::string("<a/>"); });
    EXPECT_FALSE(SaveBook(u"/nowhere/book.fb2"_s, SaveReport::None));
    EXPECT_EQ(statuses.last(), u"cannot save file: /nowhere/book.fb2"_s);
}

TEST_F(Conversion, TheBinariesOfAUnicodeBookAreUtf8)
{
    std::string book("\xff\xfe", 2);
    for (const char c :
         std::string("<?xml version=\"1.0\"?><FictionBook><p>a\nb</p><binary id=\"x\">AA==</binary>"
                     "</FictionBook>"))
        book += {c, '\0'};
    BinaryCodePage = CodePageCyrillic;
    EXPECT_TRUE(
        ConvertBookToDisplay(book, false)); // by the rules of the editor: the question has the answer No
    EXPECT_EQ(WorkCodePage, CodePageUtf16);
    EXPECT_EQ(BinaryCodePage, CodePageUtf8);
    BinaryPart.clear();
}

TEST_F(Conversion, ATreeOfMostlyTabsIsNotSaved)
{
    // Many lines at a great depth: each has a tab for each level.
    const auto deepLines = [](int count) {
        constexpr int Depth = 4'000;
        std::string text;
        for (int i = 0; i < Depth; ++i)
            text += "<a>";
        for (int i = 0; i < count; ++i)
            text += "<b/>";
        for (int i = 0; i < Depth; ++i)
            text += "</a>";
        return text;
    };
    SaveLayout layout;
    layout.declaration = Declaration;
    layout.codePage = CodePageUtf8;
    layout.style = LayoutStyle::TagsTree;
    EXPECT_FALSE(FileOfText(deepLines(100), layout).treeSkipped);
    const BookFile deep = FileOfText(deepLines(30'000), layout);
    EXPECT_TRUE(deep.treeSkipped);
    EXPECT_LT(deep.bytes.size(), 1'000'000U);
}

TEST_F(Conversion, IllegalSettingsOfTheOutputAreReset)
{
    OutputStyle = u"spiral"_s;
    OutputEncoding = u"koi8-r"_s;
    FileEncodingName = "windows-1250";
    const SaveLayout layout = SaveLayoutOfSettings();
    EXPECT_EQ(layout.style, LayoutStyle::TagsTree);
    EXPECT_EQ(layout.codePage, 1250);
    EXPECT_EQ(OutputStyle, u"tags tree"_s);
    EXPECT_EQ(OutputEncoding, u"original"_s);
}

TEST_F(Conversion, LettersThatEndInTheByteOfANonBreakingSpaceSurviveLineEnds)
{
    const BookFile file = saved(Declaration + "<a>\xd0\xa0&#10;x</a>");
    EXPECT_THAT(file.bytes, testing::HasSubstr("\xd0\xa0"));
    EXPECT_TRUE(IsValidUtf8(file.bytes));
}

TEST_F(Conversion, TheBlankPageIsWrittenAndShown)
{
    QTemporaryDir folder;
    EmptyPageFile = folder.filePath(u"empty.htm"_s);
    QStringList shown;
    const SeamGuard navigate(NavigateSeam(), [&shown](const QString& file, bool) { shown.append(file); });
    const SeamGuard caption(CaptionSeam(), [&shown](const QString& text, bool) { shown.append(text); });
    ShowEmptyPage({.caption = u"title"_s, .status = u"status"_s});
    EXPECT_EQ(shown, QStringList({u"title"_s, EmptyPageFile}));
    EXPECT_EQ(statuses.last(), u"status"_s);
    QFile file(EmptyPageFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "<HTML><BODY></BODY></HTML>");

    // Without the status there is only the page: no message and no sound.
    shown.clear();
    statuses.clear();
    const SeamGuard sound(SoundSeam(), [&shown](const QString& name) { shown.append(name); });
    ShowEmptyPage(
        {.caption = u"title"_s, .status = u"status"_s, .sound = u"ParseError.wav"_s, .skipStatus = true});
    EXPECT_EQ(shown, QStringList(EmptyPageFile));
    EXPECT_TRUE(statuses.isEmpty());
    EmptyPageFile.clear();
}

TEST_F(Conversion, ABlankPageThatCannotBeWrittenIsShownAllTheSame)
{
    EmptyPageFile = u"/nowhere/empty.htm"_s;
    QStringList shown;
    const SeamGuard navigate(NavigateSeam(), [&shown](const QString& file, bool) { shown.append(file); });
    ShowEmptyPage({.skipStatus = true});
    EXPECT_EQ(shown, QStringList(EmptyPageFile));
    EmptyPageFile.clear();
}

} // namespace
} // namespace vmk::test
