#include "BookDocument.h"
#include "BookLosses.h"
#include "BookTestSupport.h"
#include "BookToDisplay.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CodePages.h"
#include "DisplayCharacters.h"
#include "DisplayDocument.h"
#include "DisplayText.h"
#include "FreeMemory.h"
#include "MarkupScanner.h"
#include "SaveBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

// A book that is read without losses and saved unedited stays what it was. All tests take the whole way,
// through the display's document; libxml2's own tree is the judge.

using namespace Qt::StringLiterals;

namespace vmk::test {
namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

class KeptBooks : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ReadSettings(true);
        NamespaceErrorWarning = 0;
        InLineTags = DefaultInLineTags();
        BinaryPart.clear();
    }
    void TearDown() override { ReadSettings(true); }

    std::string saved(const std::string& book, const QString& style = u"tags tree"_s,
                      const QString& encoding = u"original"_s)
    {
        OutputStyle = style;
        OutputEncoding = encoding;
        losses = {};
        DisplayDocument document;
        EXPECT_TRUE(BookToDocument(book, document));
        shown = TextOfDisplay(document, AngleMarks::Keep);
        return DocumentToBook(document).bytes;
    }
    /// The content of `<r>` after it was saved.
    std::string content(const std::string& inner, const QString& style = u"tags tree"_s)
    {
        const std::string file = saved(Declaration + "<r>" + inner + "</r>", style);
        const size_t start = file.find("<r>") + 3;
        return file.substr(start, file.rfind("</r>") - start);
    }

    bool keeps = true;
    BookLosses losses;
    std::string shown;
    QString missing;
    size_t missingCount = 0;
    SeamGuard<bool(const BookLosses&)> lossGuard{LossSeam(), [this](const BookLosses& found) {
                                                     losses = found;
                                                     return keeps;
                                                 }};
    SeamGuard<MissingAnswer(const MissingCharacters&, const QString&)> missingGuard{
        MissingCharactersSeam(), [this](const MissingCharacters& found, const QString&) {
            missing = found.examples;
            missingCount = found.count;
            return keeps ? MissingAnswer::Utf8 : MissingAnswer::Substitute;
        }};
    SeamGuard<bool(BoxKind, const QString&, const QString&)> boxGuard{
        BoxSeam(), [](BoxKind, const QString&, const QString&) { return false; }};
};

// ---------------------------------------------------------------- the judge

using Tree = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Tree Parsed(const std::string& bytes)
{
    return {xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                          XML_PARSE_HUGE | XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR
                              | XML_PARSE_NOWARNING),
            xmlFreeDoc};
}

std::string Owned(xmlChar* text)
{
    std::string result = text == nullptr ? "" : reinterpret_cast<const char*>(text);
    xmlFree(text);
    return result;
}

std::string SingleBlanks(const std::string& text)
{
    std::string result;
    for (const char c : text)
        if (std::string_view(" \t\r\n").find(c) == std::string_view::npos)
            result += c;
        else if (!result.ends_with(' '))
            result += ' ';
    return result;
}

/// One line for each element, value, comment, instruction and text; white space as single blanks, none where
/// it is layout.
void Describe(const xmlNode* parent, std::vector<std::string>& lines)
{
    bool mixed = false;
    for (const xmlNode* node = parent->children; node != nullptr; node = node->next)
        mixed = mixed || node->type == XML_CDATA_SECTION_NODE
            || (node->type == XML_TEXT_NODE && !IsBlank(Owned(xmlStrdup(node->content))));
    for (const xmlNode* node = parent->children; node != nullptr; node = node->next) {
        const std::string text = SingleBlanks(Owned(xmlNodeGetContent(node)));
        const std::string trimmed(TrimBlanks(text));
        switch (node->type) {
        case XML_TEXT_NODE:
            if (mixed || !trimmed.empty())
                lines.push_back("text " + trimmed
                                + (text.size() > 1 && text.starts_with(' ') ? " after a blank" : ""));
            break;
        case XML_CDATA_SECTION_NODE:
            lines.push_back("cdata " + trimmed);
            break;
        case XML_COMMENT_NODE:
            lines.push_back("comment " + trimmed);
            break;
        case XML_PI_NODE:
            lines.push_back("instruction " + trimmed);
            break;
        case XML_ELEMENT_NODE:
            lines.push_back("element " + std::string(reinterpret_cast<const char*>(node->name)));
            for (const xmlAttr* value = node->properties; value != nullptr; value = value->next)
                lines.push_back("value " + std::string(reinterpret_cast<const char*>(value->name)) + "="
                                + Owned(xmlNodeListGetString(node->doc, value->children, 1)));
            Describe(node, lines);
            lines.emplace_back("end");
            break;
        default:
            break;
        }
    }
}

/// Blank texts at the edges of an element are layout.
std::vector<std::string> Described(const std::string& bytes)
{
    const Tree tree = Parsed(bytes);
    std::vector<std::string> lines;
    if (!tree)
        return {"not well-formed"};
    Describe(reinterpret_cast<const xmlNode*>(tree.get()), lines);
    std::erase_if(lines, [](const std::string& line) { return line == "text "; });
    for (size_t i = 1; i < lines.size(); ++i)
        if (lines[i].ends_with(" after a blank")
            && (lines[i - 1].starts_with("value") || lines[i - 1].starts_with("element")))
            lines[i].resize(lines[i].size() - std::string(" after a blank").size());
    return lines;
}

TEST_F(KeptBooks, ABadByteDoesNotChangeTheEncoding)
{
    const std::string words = "<r>\xd0\x96\xd0\xb8\xd0\xb7\xd0\xbd\xd1\x8c \xff \xd1\x91</r>";
    const std::string mark = "\xef\xbb\xbf";
    for (const std::string& front : {std::string("<?xml version='1.0' encoding='utf-8'?>"),
                                     std::string("<?xml version=\"1.0\" encoding = \"UTF-8\"?>"),
                                     mark + "<?xml version=\"1.0\"?>", mark})
        EXPECT_EQ(saved(front + words), Declaration + "\r\n" + words + "\r\n") << front;
    // A byte that the code page lacks.
    const std::string western = "<r>na\xefve \x81</r>";
    EXPECT_EQ(saved("<?xml version='1.0' encoding='windows-1252'?>" + western),
              "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\r\n" + western);
}

TEST_F(KeptBooks, ATextThatIsNotUtf8IsNotReadAsUtf8)
{
    const std::string words = "<r>\xc6\xe8\xe7\xed\xfc \xf1\xeb\xee\xe2\xe0</r>";
    for (const std::string front : {"<?xml version='1.0' encoding='utf-8'?>", "\xef\xbb\xbf"}) {
        static_cast<void>(saved(front + words));
        EXPECT_THAT(shown, testing::HasSubstr(BytesToUtf8(words, CodePageCyrillic))) << front;
    }
}

TEST_F(KeptBooks, CommentsOfADamagedBookGetNoBlanks)
{
    for (const std::string inner : {"<p>q<!-- c <p>x</p> d -->e</p>", "<p>q<!--c--></p>", "<p><!--c-->q</p>"})
        EXPECT_THAT(content(inner + "<x:y>"), testing::HasSubstr(inner));
    // Between elements a comment is on its own line.
    EXPECT_THAT(content("<a/><!--c--><b/><x:y>"), testing::HasSubstr("<a/>\r\n<!--c-->\r\n<b/>\r\n"));
}

TEST_F(KeptBooks, WhiteSpaceRemainsWhereItSeparatesWordsOnly)
{
    const struct
    {
        const char* inner;
        const char* saved;
    } cases[] = {
        {"<p>a<strong>\nb</strong>c</p>", "<p>a<strong> b</strong>c</p>"},
        {"<p>a<strong>b\n</strong>c</p>", "<p>a<strong>b </strong>c</p>"},
        {"<p>a<strong>\n</strong>b</p>", "<p>a<strong/>b</p>"},
        {"<p>\n<strong>b</strong>\n</p>", "<p>\r\n\t\t<strong>b</strong>\r\n\t</p>"},
        {"<p>\n<strong>b</strong>c</p>", "<p><strong>b</strong>c</p>"},
        {"<p a=\"x \ny\"/>", "<p a=\"x &#32;y\"/>"},
        {"<p a=\"x \ny\"/><y:z>", "<p a=\"x &#32;y\"/>"},
        {"<p/><!--\nc\n--><p/>", "<!--c-->"},
        {"<p><strong>a</strong> <strong>b</strong></p>", "<p><strong>a</strong> <strong>b</strong></p>"},
    };
    for (const auto& one : cases)
        EXPECT_THAT(content(one.inner), testing::HasSubstr(one.saved)) << one.inner;
    EXPECT_THAT(content("<p>a \n<strong>b</strong></p>"), testing::HasSubstr("<p>a <strong>b</strong></p>"));
    EXPECT_EQ(losses.lines.joinedWords, 0U) << "a blank separates them in any reading";
}

TEST_F(KeptBooks, ElementsOfAParagraphAreBrokenOnlyWithoutContentBetweenWords)
{
    for (const QString& style : {u"tags tree"_s, u"line ends"_s}) {
        for (const std::string inner :
             {"<p><strong>x</strong><image/></p>", "<p><image/><strong>x</strong></p>",
              "<p><image/><![CDATA[y]]><image/></p>"})
            EXPECT_THAT(content(inner, style), testing::HasSubstr(inner));
        EXPECT_THAT(content("<p><image/><image/></p>", style), testing::HasSubstr("<image/>\r\n"));
        EXPECT_THAT(content("<p><strong>x</strong></p>"), testing::HasSubstr("<p>\r\n"));
    }
    // Only line ends next to text are losses.
    const auto torn = [this](const std::string& inner) {
        static_cast<void>(content(inner));
        return losses.lines.tornTexts;
    };
    EXPECT_GT(torn("<p><strong>x</strong><image/></p>"), 0U);
    EXPECT_EQ(torn("<p><image/><image/></p>"), 0U);
    EXPECT_EQ(torn("<p><strong>x</strong></p>"), 0U);
    // Also in a book that is not well-formed.
    EXPECT_THAT(content("<a><b></b><![CDATA[x]]><y:z>"), testing::HasSubstr("</b><![CDATA[x]]>"));
}

TEST_F(KeptBooks, AReferenceToALineEndInTextIsABlank)
{
    EXPECT_THAT(content("<p>a&#13;b&#xA;c&#9;d</p>"), testing::HasSubstr("<p>a b c d</p>"));
    EXPECT_EQ(losses.characters.lineEnds, 3U);
}

TEST_F(KeptBooks, AGuardAfterATypedReplacementCharacterIsNoByte)
{
    for (const std::string text : {"<a>\xef\xbf\xbd\xef\xb8\x8cx</a>", "<a>\xef\xbf\xbd\xef\xb8\x8c"})
        EXPECT_EQ(ResolveDisplayText(text), text);
}

TEST_F(KeptBooks, APlaceAtAReferenceIsItsStart)
{
    const std::string guarded = "&amp;\xef\xb8\x8c";
    const std::string text = "<a>" + guarded + "b</a>";
    ASSERT_EQ(ResolveDisplayText(text), "<a>&b</a>");
    EXPECT_EQ(UnresolvedOffset(text, 3), 3U);
    EXPECT_EQ(UnresolvedOffset(text, 4), 3 + guarded.size());
    EXPECT_EQ(UnresolvedOffset(text, 100), text.size());
}

TEST_F(KeptBooks, QuotedReferencesToBracketsAreNotProtected)
{
    std::string text = "<!-- &#60; --><a b='&#62;'>&#60;<![CDATA[&#60;]]></a>";
    ProtectNumericAngles(text);
    EXPECT_EQ(text, "<!-- &#60; --><a b='&#x203A;'>&#x2039;<![CDATA[&#60;]]></a>");
}

TEST_F(KeptBooks, TheMarkOfUtf8IsNotSaved)
{
    SaveLayout layout;
    layout.declaration = Declaration;
    layout.codePage = CodePageUtf8;
    for (const bool kept : {false, true}) {
        layout.keepsText = kept;
        for (const std::string& front : {std::string(), Declaration})
            EXPECT_EQ(FileOfText("\xef\xbb\xbf" + front + "<a/>", layout).bytes, Declaration + "\r\n<a/>");
    }
}

TEST_F(KeptBooks, MissingCharactersAreCountedInTextAndPictures)
{
    const std::string start = Declaration + "<FictionBook><body><p>";
    const std::string end = "</p></body><binary id=\"\xc5\x82\">QUJD</binary></FictionBook>";
    static_cast<void>(
        saved(start + "\xc5\xbc\xf0\x9f\x98\x80\xf0\x9f\x98\x80" + end, u"compact"_s, u"windows-1251"_s));
    EXPECT_EQ(missing, u"\u017c \U0001f600"_s);
    EXPECT_EQ(missingCount, 4U);
    static_cast<void>(saved(start + "a" + end, u"compact"_s, u"windows-1251"_s));
    EXPECT_EQ(missing, u"\u0142"_s);
    EXPECT_EQ(missingCount, 1U);
    // Ten examples are enough.
    const MissingCharacters many = FindMissingCharacters(
        QString(u"\u0100\u0101\u0102\u0103\u0104\u0105\u0106\u0107\u0108\u0109\u010a\u010b"_s).toStdString(),
        CodePageCyrillic);
    EXPECT_EQ(many.count, 12U);
    EXPECT_EQ(many.examples.split(u' ').size(), 10);
}

TEST_F(KeptBooks, TextInFrontOfTheDeclarationIsSaved)
{
    EXPECT_THAT(saved("words" + Declaration + "<r/>"), testing::HasSubstr("words"));
}

TEST_F(KeptBooks, PicturesFollowTheTextWithoutAnEmptyLine)
{
    const std::string book
        = Declaration + "<FictionBook><body><p>a</p></body><binary id=\"a\">QUJD</binary></FictionBook>";
    for (const QString& style : {u"tags tree"_s, u"line ends"_s, u"compact"_s}) {
        const std::string file = saved(book, style);
        EXPECT_THAT(file, testing::HasSubstr("</body>\r\n<binary"));
        EXPECT_THAT(file, testing::HasSubstr("</binary>\r\n</FictionBook>"));
    }
}

TEST_F(KeptBooks, ADeclarationWithoutItsEndTakesNoTextWithIt)
{
    for (const std::string end : {"?", "", ">", " ?", "/>"}) {
        const std::string front = "<?xml version=\"1.0\" encoding=\"utf-8\"" + end;
        for (const std::string rest : {"<r>words<?pi x?>more</r>", "<!-- c --><r>words<?pi x?>more</r>"}) {
            const std::string file = saved(front + rest);
            EXPECT_TRUE(file.starts_with(Declaration)) << file;
            EXPECT_NE(file.find("words<?pi x?>more</r>"), std::string::npos) << file;
        }
    }
}

TEST_F(KeptBooks, RandomBooksStayWhatTheyWereInEveryLayout)
{
    TextMaker maker(91);
    int compared = 0;
    for (int i = 0; i < 1500; ++i) {
        const std::string book = maker.book();
        const std::vector<std::string> before = Described(book);
        if (before.front() == "not well-formed" || !IsValidUtf8(book))
            continue;
        const QString& style = OutputStyles[i % 3];
        const std::string file = saved(book, style, i % 4 == 0 ? u"windows-1251"_s : u"utf-8"_s);
        ASSERT_EQ(Described(file), before) << i << ' ' << style.toStdString() << "\n" << book << "\n" << file;
        ++compared;
    }
    EXPECT_GT(compared, 700);
}

TEST_F(KeptBooks, EveryBookOfTheCorpusStaysWhatItWas)
{
    if (CorpusBooks().empty())
        GTEST_SKIP() << NoCorpus;
    for (const CorpusBook& book : CorpusBooks()) {
        SCOPED_TRACE(book.name);
        const std::vector<std::string> before = Described(book.bytes);
        if (before.front() == "not well-formed")
            continue;
        std::vector<std::string> after = Described(saved(book.bytes));
        // The program is named in the description: take that out of both.
        const auto text = [](const std::vector<std::string>& lines) {
            std::string all;
            for (const std::string& line : lines)
                all += line + '\n';
            return all;
        };
        const std::string a = text(before);
        const std::string b = text(after);
        EXPECT_TRUE(a.substr(a.find("element body")) == b.substr(b.find("element body")))
            << Difference(b.substr(b.find("element body")), a.substr(a.find("element body")));
    }
}

TEST_F(KeptBooks, WithoutLossesThePageIsThatOfTheEditorsOwnReading)
{
    TextMaker maker(92);
    int same = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::string book = maker.book();
        losses = {};
        std::string page = book;
        ASSERT_TRUE(ConvertBookToDisplay(page, false));
        if (losses.any() || !IsValidUtf8(book))
            continue;
        std::string preview = book;
        ASSERT_TRUE(ConvertBookToDisplay(preview, true));
        ASSERT_TRUE(page == preview) << i << ": " << book << "\n" << Difference(page, preview);
        ++same;
    }
    EXPECT_GT(same, 50);
}

// ---------------------------------------------------------------- values and mark-up

TEST_F(KeptBooks, AValueWithDoubleQuotesIsShownInSingleOnes)
{
    EXPECT_EQ(content("<s name=\"The &quot;Star&quot; cycle\"/>"),
              "\r\n\t<s name=\"The &quot;Star&quot; cycle\"/>\r\n");
    EXPECT_THAT(shown, testing::HasSubstr("name='The \"Star\" cycle'"));
    keeps = false;
    EXPECT_EQ(content("<s name=\"The &quot;Star&quot; cycle\"/>", u"line ends"_s),
              "\r\n<s name='The \"Star\" cycle'/>\r\n");
}

TEST_F(KeptBooks, AValueWithBothKindsOfQuotesCanBeShownAndTyped)
{
    const std::string both = "<s name=\"a &quot;b&quot; 'c' &amp;quot; &amp;amp;quot; &amp;\"/>";
    EXPECT_EQ(content(both), "\r\n\t" + both + "\r\n");
    EXPECT_THAT(shown, testing::HasSubstr("a &quot;b&quot; 'c' &amp;quot;"));
    DisplayDocument document;
    document.typeText(u"<s name=\"&quot;x&quot; &copy; & &#10;\">&quot;</s>"_s);
    EXPECT_EQ(TrimBlanks(ReplaceAll(TextOfDisplay(document, AngleMarks::Restore), "\r\n", "")),
              "<s name=\"&quot;x&quot; &amp;copy; &amp; &#10;\">&amp;quot;</s>");
}

TEST_F(KeptBooks, WhiteSpaceOfValuesStays)
{
    EXPECT_EQ(content("<s x=\"a  b&#10;c&#9;d\"/>"), "\r\n\t<s x=\"a &#32;b&#10;c&#9;d\"/>\r\n");
    EXPECT_EQ(losses.lines.valueBlanks, 1U);
}

TEST_F(KeptBooks, AmpersandsOutsideTextAndValuesAreNoReferences)
{
    const std::string inner = "<!-- a & b &copy; &amp; --><?p a & b?><p><![CDATA[ & &lt; ]]></p>";
    const std::string file = content(inner);
    for (const std::string part : {"<!-- a & b &copy; &amp; -->", "<?p a & b?>", "<![CDATA[ & &lt; ]]>"})
        EXPECT_THAT(file, testing::HasSubstr(part));
}

TEST_F(KeptBooks, AReferenceToABracketIsAProtectedBracket)
{
    for (const bool keep : {true, false}) {
        keeps = keep;
        EXPECT_EQ(content("&#60;i&#x3e; &lt;b&gt;"), "&lt;i&gt; &lt;b&gt;");
    }
}

TEST_F(KeptBooks, GenuineMarksAndGuardsAreKept)
{
    const std::string guard(DisplayGuard);
    for (const int nbsp : {0, 1}) {
        ShowNbsp = nbsp;
        for (const std::string& text : {std::string("\xe2\x80\xb9x\xe2\x80\xba &lt;"),
                                        std::string("a\xc2\xa0"
                                                    "b\x7f"
                                                    "c"),
                                        "x" + guard, "\xe2\x80\xb9" + guard, "\xc2\xa0" + guard + guard,
                                        std::string(DisplayGuardEscape) + guard})
            EXPECT_EQ(content(text), text);
    }
}

TEST_F(KeptBooks, ABrokenBookIsNotDamagedFurther)
{
    const std::string inner
        = "<p x=\"&quot;q&quot;\">&copy; &lt;i&gt; &#1078; &quot; &amp;copy; a <b>c</b> d<p>";
    EXPECT_EQ(content(inner, u"line ends"_s), "\r\n" + inner + "\r\n");
    EXPECT_EQ(content("<b>\x80\xff &nbsp;\xd0", u"line ends"_s), "\r\n<b>\x80\xff &nbsp;\xd0");
    EXPECT_EQ(losses.foreignBytes, 3U);
}

// ---------------------------------------------------------------- lines, text beside elements, encodings

TEST_F(KeptBooks, ALineEndThatPartsWordsIsABlank)
{
    EXPECT_EQ(content("<p>one\ntwo <i>x</i>\r\n,y\n</p>"), "\r\n\t<p>one two <i>x</i> ,y</p>\r\n");
    EXPECT_EQ(losses.lines.joinedWords, 2U);
    keeps = false;
    EXPECT_THAT(content("<p>one\ntwo</p>"), testing::HasSubstr("onetwo"));
}

TEST_F(KeptBooks, NoLineEndIsPutIntoText)
{
    for (const QString& style : OutputStyles) {
        const std::string file = content("<p>a <code>b</code>, c<image/>d</p>", style);
        EXPECT_THAT(file, testing::HasSubstr("<p>a <code>b</code>, c<image/>d</p>"));
    }
    EXPECT_GT(losses.lines.tornTexts, 0U);
}

TEST_F(KeptBooks, ASectionWithInLineChildrenIsStillATree)
{
    const std::string file = content("<section><a>b</a> <a>c</a><p>d</p><p>e</p></section>");
    EXPECT_THAT(shown, testing::Not(testing::HasSubstr("<p>d</p><p>e</p>")));
    EXPECT_THAT(file, testing::Not(testing::HasSubstr("<a>b</a><a>c</a>")))
        << "white space separates the two";
}

TEST_F(KeptBooks, WhatFollowsThePicturesStaysInItsPlace)
{
    const std::string end = "<binary id=\"i\">AA==</binary><!-- after -->\r\n</FictionBook>\r\n<!-- end -->";
    const std::string file = saved(Declaration + "<FictionBook><p>x</p>" + end);
    EXPECT_TRUE(file.ends_with(end)) << file;
    EXPECT_GT(losses.droppedBytes, 25U);
}

TEST_F(KeptBooks, QuotedPicturesAreNoPictures)
{
    const std::string file = saved(Declaration
                                   + "<FictionBook><!-- <binary> </FictionBook> --><p>x</p>"
                                     "<binary id=\"i\">AA==</binary></FictionBook>");
    EXPECT_EQ(file.find("<binary id"), file.rfind("<binary id"));
    EXPECT_THAT(file, testing::HasSubstr("<!-- <binary> </FictionBook> -->"));
    EXPECT_THAT(shown, testing::HasSubstr("<p>x</p>"));
}

TEST_F(KeptBooks, TheEncodingIsReadAsXmlSays)
{
    const auto letter
        = [this](const std::string& bytes) { return saved(bytes).find("\xd0\x96") != std::string::npos; };
    EXPECT_TRUE(letter("<?xml version='1.0' encoding='utf-8'?><a>\xd0\x96</a>"));
    EXPECT_EQ(losses.encoding, u"utf-8"_s);
    EXPECT_TRUE(letter("<?xml version=\"1.0\" encoding = \"koi8-r\"?><a>\xf6</a>"));
    EXPECT_TRUE(letter("<a>\xd0\x96</a>"));
    InputEncoding = u"windows-1252"_s;
    EXPECT_FALSE(letter("<?xml version='1.0' encoding='utf-8'?><a>\xd0\x96</a>"));
    EXPECT_EQ(losses.misreadCharacters, 0U) << "the user has chosen";
}

TEST_F(KeptBooks, CharactersThatTheEncodingLacksAreAnnounced)
{
    const std::string book = Declaration + "<a>\xd0\x96\xc3\xa9\xc3\xa9\xe2\x98\x83</a>";
    EXPECT_THAT(saved(book, u"tags tree"_s, u"windows-1251"_s),
                testing::HasSubstr("\xd0\x96\xc3\xa9\xc3\xa9\xe2\x98\x83"));
    EXPECT_EQ(missing, u"\u00e9 \u2603"_s);
    keeps = false;
    EXPECT_THAT(saved(book, u"tags tree"_s, u"windows-1251"_s),
                testing::HasSubstr("\xc6"
                                   "ee?"));
}

TEST_F(KeptBooks, TheQuestionNamesEachLossWithItsCount)
{
    BookLosses found;
    EXPECT_FALSE(found.any());
    found.lines.joinedWords = 1075;
    found.cutCharacters = 3;
    EXPECT_TRUE(found.any());
    EXPECT_EQ(found.descriptionLines().size(), 2);
    EXPECT_TRUE(LossQuestion(found).contains(u"1 075"_s)) << LossQuestion(found).toStdString();
}

// ---------------------------------------------------------------- the position of an error

TEST_F(KeptBooks, APlaceInTheTextIsFoundInTheDisplay)
{
    const auto offset = [](const QString& lines, std::string_view sought) {
        DisplayDocument document;
        const QString html = lines.toHtmlEscaped().replace(u'|', u"</DIV>\r\n<DIV>"_s);
        document.loadPage((u"<BODY>\r\n<DIV>"_s + html + u"</DIV>"_s).toUtf8());
        const std::string text = TextOfDisplay(document, AngleMarks::Keep);
        return DisplayOffset(document, qsizetype(text.find(sought)));
    };
    EXPECT_EQ(offset(u"<a>z"_s, "z"), 3) << "without a declaration";
    EXPECT_EQ(offset(u"<?xml version='1'?>|<a>z"_s, "z"), 23);
    EXPECT_EQ(offset(u"typed<?xml version='1'?>|<a>z"_s, "z"), 28) << "what is dropped counts";
    EXPECT_EQ(offset(u"<a>& \u044f\U0001F600z"_s, "z"), 8);
    EXPECT_EQ(offset(u"<a b='&quot;'><!-- & -->z"_s, "z"), 24);
}

TEST_F(KeptBooks, APlaceBeyondTheRangeOf32BitsIsFoundInTheDisplay)
{
    if (!MayUseMemory(1.2e10))
        GTEST_SKIP() << "needs VMK_LARGE_TESTS and 12 GB";
    constexpr qsizetype Lines = 2200;
    constexpr qsizetype Length = 1'000'000;
    DisplayDocument document;
    const TagId div = document.tags().intern(u"DIV", {});
    const LinePtr line = MakeLine({div, QString(Length, u'x'), {}});
    std::vector<LinePtr> lines(Lines, line);
    lines.push_back(MakeLine({div, u"<z>"_s, {}}));
    document.splice(0, 1, std::move(lines), {{0, 0}, {1, 0}, {int(Lines) + 1, 0}, false});
    // The text begins with the line end before the first line.
    EXPECT_EQ(DisplayOffset(document, 2 + Lines * (Length + 2) + 2), Lines * (Length + 1) + 2);
}

} // namespace
} // namespace vmk::test
