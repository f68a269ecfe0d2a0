#include "BookPage.h"
#include "BookReading.h"
#include "BookTestSupport.h"
#include "CodePages.h"
#include "DisplayDocument.h"
#include "OutlinedBook.h"
#include "Settings.h"
#include "XmlDocument.h"

#include <gtest/gtest.h>

#include <random>

// Books in common form are read without the parser. The parser's reading is the judge.

using namespace Qt::StringLiterals;

namespace vmk::test {
namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

/// Lays a book out in both ways and compares the results.
void ExpectSameTree(const std::string& book, const InLineTagSet& tags)
{
    const std::size_t start = book.find("?>") + 2;
    const std::optional<BookOutline> outline = OutlineOf(book, start, book.size(), tags, true);
    if (!outline)
        return;
    const std::string xml = XmlOfOutline({book, Declaration, *outline});
    LineLosses losses;
    const std::string lines = KeptTreeLines(book, "\r\n", tags, losses);
    XmlSerializer serializer(tags.elementNames(), Declaration);
    serializer.keepTextOf(TextElementNames(tags));
    XmlDocument document;
    document.validateOnParse = false;
    ASSERT_TRUE(document.loadXML(lines, XmlEncoding::utf8(), &serializer));
    const std::string expected = serializer.take().laidOut();
    EXPECT_EQ(xml, expected) << Difference(xml, expected);
}

/// Reads a book in both ways and compares the results. Returns false if it is not in common form.
bool ReadsTheSame(const std::string& book, const DisplayValues& values, const InLineTagSet& tags)
{
    std::string bytes = book;
    std::optional<OutlinedBook> outlined = ReadOutlinedBook(bytes, values.showNbsp, tags, u"original"_s);
    if (!outlined) {
        EXPECT_EQ(bytes, book);
        return false;
    }
    EXPECT_TRUE(bytes.empty());
    const KeptBook kept = ReadKeptBook(book, values, tags, u"original"_s);
    EXPECT_TRUE(kept.hasTree);
    const std::string page = PageWithOutline(*outlined->text, values);
    EXPECT_EQ(page, kept.page) << Difference(page, kept.page);
    EXPECT_EQ(outlined->binaryPart, kept.binaryPart);
    EXPECT_EQ(kept.binaryPart.empty() ? 0 : outlined->binaryCodePage, kept.binaryCodePage);
    EXPECT_EQ(outlined->encoding.work, kept.encoding.work);
    EXPECT_EQ(outlined->encoding.file, kept.encoding.file);
    EXPECT_EQ(outlined->encoding.declaration, kept.encoding.declaration);
    EXPECT_EQ(outlined->losses.lines.joinedWords, kept.losses.lines.joinedWords);
    EXPECT_EQ(outlined->losses.lines.tornTexts, kept.losses.lines.tornTexts);
    EXPECT_EQ(outlined->losses.movedElements, kept.losses.movedElements);
    EXPECT_EQ(outlined->losses.misreadCharacters, kept.losses.misreadCharacters);
    EXPECT_EQ(outlined->losses.encoding, kept.losses.encoding);
    EXPECT_EQ(outlined->losses.garbledBrackets, kept.losses.garbledBrackets);
    EXPECT_EQ(outlined->losses.descriptionLines().join(u'\n').toStdString(),
              kept.losses.descriptionLines().join(u'\n').toStdString());

    DisplayDocument parsed;
    parsed.loadPage(QByteArray::fromStdString(kept.page));
    TagTable tagTable;
    const OutlineLines lines(outlined->text, values, tagTable);
    const std::vector<LinePtr> made = lines.make(0, lines.count());
    EXPECT_EQ(int(made.size()), parsed.lineCount());
    for (int i = 0; i < std::min(int(made.size()), parsed.lineCount()); ++i) {
        const Line& line = *made[std::size_t(i)];
        const Line& expected = parsed.line(i);
        EXPECT_EQ(line.text, expected.text);
        EXPECT_EQ(tagTable[line.block].startTag(), parsed.tags()[expected.block].startTag());
        EXPECT_EQ(line.marks.size(), expected.marks.size());
        for (std::size_t k = 0; k < std::min(line.marks.size(), expected.marks.size()); ++k) {
            EXPECT_EQ(line.marks[k].pos, expected.marks[k].pos);
            EXPECT_EQ(line.marks[k].open, expected.marks[k].open);
            EXPECT_EQ(tagTable[line.marks[k].tag].startTag(),
                      parsed.tags()[expected.marks[k].tag].startTag());
        }
        if (::testing::Test::HasFailure())
            break;
    }
    EXPECT_EQ(outlined->takeBytes(), book);
    ExpectSameTree(book, tags);
    return true;
}

class Outlines : public ::testing::Test
{
protected:
    void SetUp() override { ReadSettings(true); }
    bool same(const std::string& book) { return ReadsTheSame(book, values, tags); }
    static std::string whole(const std::string& body)
    {
        return Declaration + "\r\n<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\" "
            + "xmlns:l=\"http://www.w3.org/1999/xlink\"><description><title-info><book-title>T</book-title>"
            + "</title-info></description><body>" + body + "</body></FictionBook>";
    }

    DisplayValues values = DefaultValues();
    InLineTagSet tags{DefaultInLineTags()};
};

TEST_F(Outlines, ABookInCommonFormIsReadAsByTheParser)
{
    EXPECT_TRUE(same(whole(
        "<section id=\"s1\"><title><p>Один</p></title><p>Текст <emphasis>и</emphasis> ещё "
        "<a l:href=\"#n1\" type=\"note\">1</a>.</p><empty-line/><p>A &amp; B &lt;C&gt;</p></section>")));
}

TEST_F(Outlines, TextsOfProgramsAreInCommonForm)
{
    EXPECT_TRUE(same(whole("<p>a > b, a -> b, a/></p><p>x = \"y\"; class=\"c\"; <sup>></sup></p>")));
    EXPECT_TRUE(same(whole("<p>&lt;a id=\"x\" l:href=&quot;‹y›&#34; xmlns=\"z\"&gt;</p>")));
    EXPECT_FALSE(same(whole("<p>]]></p>")));
    // The value would end in another text.
    EXPECT_FALSE(same(whole("<p>a id=\"x</p>")));
}

TEST_F(Outlines, CharactersThatTheDisplayGuardsAreInCommonForm)
{
    for (const bool showNbsp : {false, true}) {
        values.showNbsp = showNbsp;
        EXPECT_TRUE(same(whole("<p id=\"‹\u00a0\">‹a› \u00a0b\u00a0</p><!-- ›\u00a0 -->")));
    }
}

TEST_F(Outlines, NamespacesOfInnerElementsAreInCommonForm)
{
    EXPECT_TRUE(same(whole("<p><a xmlns:q=\"u\" q:href=\"#n\">1</a></p><q:x xmlns:q=\"u\"><q:y/></q:x>")));
    EXPECT_FALSE(same(whole("<p><a xmlns:q=\"u\" q:href=\"#n\"/></p><q:x/>")));
    EXPECT_FALSE(same(whole("<p q:a=\"\" xmlns:q=\"u\"/><p q:a=\"\"/>")));
}

TEST_F(Outlines, LinesBetweenElementsOfATextAreInCommonForm)
{
    EXPECT_TRUE(same(whole("<section>text<p>a</p>\n<p>b</p>\r\n<empty-line/>\n</section>")));
    EXPECT_TRUE(same(whole("<p>a<code>b</code>\n<empty-line/>\nc</p>")));
    // What the first line end is depends on the text after it.
    EXPECT_FALSE(same(whole("<section><p>a</p>\n<p>b</p>\n\ntext</section>")));
}

TEST_F(Outlines, ADeclarationInSingleQuotesIsInCommonForm)
{
    const auto book = [](const std::string& declaration, const std::string& text) {
        return declaration + whole("<p>" + text + "</p>").substr(Declaration.size());
    };
    EXPECT_TRUE(same(book("<?xml version='1.0' encoding='utf-8'?>", "Ж")));
    EXPECT_TRUE(same(book("<?xml version='1.0' encoding='UTF-8' standalone='no' ?>", "Ж")));
    // The editor's own rules find another encoding, which is right too.
    EXPECT_FALSE(same(book("<?xml version='1.0' encoding='utf-8'?>", "a")));
    EXPECT_FALSE(same(book("<?xml version='1.0' encoding='windows-1251'?>", "a")));
    EXPECT_FALSE(same(book("<?xml version='1.0' encoding=\"utf-8\"?>", "a")));
}

TEST_F(Outlines, TheBooksOfTheCorpusAreTheSame)
{
    if (CorpusBooks().empty())
        GTEST_SKIP() << NoCorpus;
    int count = 0;
    for (const CorpusBook& book : CorpusBooks()) {
        SCOPED_TRACE(book.name);
        count += same(book.bytes) ? 1 : 0;
        if (HasFailure())
            return;
    }
    std::cout << count << " of " << CorpusBooks().size() << " books are in common form\n";
}

/// Random books close to the common form.
class Maker
{
public:
    explicit Maker(std::uint32_t seed)
        : random(seed)
    {
    }
    std::string book();

private:
    std::size_t below(std::size_t count) { return random() % count; }
    bool rarely() { return below(60) == 0; }
    std::string pick(std::initializer_list<const char*> texts) { return texts.begin()[below(texts.size())]; }
    std::string white();
    std::string tag(const std::string& name);
    std::string text();
    std::string element(int depth);

    std::mt19937 random;
};

std::string Maker::white()
{
    return below(3) == 0
        ? ""
        : pick({"", "", " ", "\n", "\r\n", "\n\t", "\r\n  ", "  ", "\t", " \n", "\t ", " \t \t"});
}

std::string Maker::tag(const std::string& name)
{
    std::string result = "<" + name;
    while (below(4) == 0) {
        result += rarely() ? pick({"\n", "\t", "  ", "\n "}) : " ";
        result += pick({"id", "name", "l:href", "type", "number", "value", "x", "xml:lang", "style", "l:type",
                        "match", "q:href", "q:a", "xmlns:q", "xmlns", "xmlns:l"});
        if (below(8) == 0)
            result += std::to_string(below(9));
        result += "="
            + (below(5) == 0 ? "'" + pick({"a", "Имя", "", "a b", "it"}) + "'"
                             : "\""
                       + pick({"a", "Имя", "", "#n1", "a b", "it's", "1", "x\u00a0y", "a&amp;b",
                               "&amp;amp;quot;", "a‹b›", "k=", "a>b", "&lt;x", "&amp;#5;", " z", "id="})
                       + "\"");
    }
    return result + (rarely() ? pick({" ", "\n", "\t"}) : "");
}

std::string Maker::text()
{
    std::string result;
    for (std::size_t i = below(5); i > 0; --i)
        result += pick({"слово",     " ",
                        "word",      "  ",
                        "—",         "&amp;",
                        "&lt;",      "&gt;",
                        "&quot;",    "&apos;",
                        "\"",        "x=",
                        "' ",        ". ",
                        "\u00a0",    "ё",
                        "Ж",         "ß",
                        "€",         "\U0001F600",
                        " name=",    ">",
                        " >",        "‹",
                        "›",         " class=\"c\"",
                        "/>",        "&amp;lt;",
                        "&amp;#60;", "длинное слово подлиннее, чем шестнадцать байт"});
    if (rarely())
        result += pick({"\n",
                        "\t",
                        "]]>",
                        "id=\"",
                        " href=&quot;",
                        "i&#100;=\"",
                        "id&#61;\"",
                        "\x7f",
                        "&#160;",
                        "&#1046;",
                        "&#38;#60;",
                        "<!--c-->",
                        "<!-- a\n  b \"x\" -->",
                        "<!--\nЖ\u00a0\n-->",
                        "<!--a=\"b\"-->",
                        "\xff",
                        "\xef\xb8\x8c",
                        "&x;",
                        "\xef\xbf\xbe",
                        "\xd0",
                        "<b",
                        "\x01"});
    return result;
}

std::string Maker::element(int depth)
{
    const std::string name
        = pick({"p",      "p",     "p",          "section", "title",    "emphasis", "strong", "a",
                "code",   "image", "empty-line", "v",       "cite",     "td",       "sub",    "date",
                "stanza", "style", "author",     "poem",    "subtitle", "tr",       "lang",   "l:x"});
    if (below(6) == 0)
        return tag(name) + "/>";
    std::string result = tag(name) + ">";
    for (std::size_t i = depth > 5 ? 0 : below(5); i > 0; --i) {
        result += white();
        result += below(3) == 0 ? text() : element(depth + 1);
    }
    if (depth > 5 || below(3) == 0)
        result += text();
    result += white();
    return result + (below(3000) == 0 ? "</x>" : "</" + name + (rarely() ? " >" : ">"));
}

std::string Maker::book()
{
    std::string result = pick({"", "", "", "\xef\xbb\xbf"})
        + pick({"<?xml version=\"1.0\" encoding=\"utf-8\"?>", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
                "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>",
                "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>", "<?xml version='1.0' encoding='utf-8'?>",
                "<?xml version='1.0' encoding='UTF-8' standalone='yes' ?>",
                "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\" ?>"})
        + white()
        + "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\" "
          "xmlns:l=\"http://www.w3.org/1999/xlink\">"
        + white();
    result += "<description>" + white() + "<title-info>" + element(4) + "</title-info>" + white()
        + pick({"", "<document-info><author><nickname>N</nickname></author></document-info>",
                "<document-info>\n<program-used>Editor</program-used></document-info>",
                "<document-info><date>1</date></document-info>",
                "<document-info><program-used>Vellumark, x</program-used></document-info>"})
        + "</description>" + white() + "<body>";
    for (std::size_t i = below(6); i > 0; --i)
        result += white() + element(0);
    result += white() + "</body>" + white();
    if (below(3) == 0) {
        result += "<binary id=\"a.png\" content-type=\"image/png\">aGFsbG8=</binary>" + white()
            + pick({"", "<binary id=\"b\" content-type=\"image/png\">\n</binary>", "<binary id=\"b\"/>",
                    "<!-- -->"})
            + white();
    }
    return result + "</FictionBook>" + white() + (rarely() ? "x" : "");
}

/// The book in windows-1251; other characters are lost.
std::string InCodePage(std::string book)
{
    const std::size_t start = book.find("encoding=\"") + 10;
    book.replace(start, book.find('"', start) - start, "windows-1251");
    return Utf8ToBytes(book.substr(book.find('<')), CodePageCyrillic);
}

TEST_F(Outlines, RandomBooksAreTheSame)
{
    const char* wanted = std::getenv("VMK_OUTLINE_BOOKS");
    const int books = wanted ? std::atoi(wanted) : 3000;
    int common = 0;
    for (int i = 0; i < books; ++i) {
        Maker maker(std::uint32_t(i) + 1);
        values = DefaultValues();
        values.showNbsp = i % 3 != 0;
        values.tagHighlighting = i % 7 != 0;
        values.tagFontWeight = i % 2 == 0 ? "bold" : "normal";
        std::string book = maker.book();
        if (i % 4 == 1)
            book = InCodePage(book);
        SCOPED_TRACE("seed " + std::to_string(i + 1) + "\n" + book);
        common += same(book) ? 1 : 0;
        if (HasFailure())
            return;
    }
    std::cout << common << " of " << books << " are in common form\n";
    EXPECT_GT(common, books / 8);
}

} // namespace
} // namespace vmk::test
