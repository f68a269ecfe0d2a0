// Pasted HTML costs no more than a small multiple of its size, whatever it contains, and its text is kept.

#include "DisplayDocument.h"
#include "HtmlCheck.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"
#include "WorkRatio.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <functional>
#include <set>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct HostileHtml
{
    const char* name;
    std::function<QString(qsizetype size)> make; ///< Returns a text of about that length.
};

QString Repeated(const QString& piece, qsizetype size)
{
    return piece.repeated(size / piece.size() + 1);
}

QString Numbered(qsizetype size, const std::function<QString(const QString& number)>& make)
{
    QString html;
    for (int i = 0; html.size() < size; ++i)
        html += make(QString::number(i));
    return html;
}

/// Elements that overlap: each end tag closes and opens all the others.
QString Overlapping(qsizetype size)
{
    QString html;
    for (int i = 0; i < 250; ++i)
        html += u"<x%1>"_s.arg(i);
    for (int i = 0; html.size() < size; i = (i + 1) % 250)
        html += u"</x%1>x<x%1>"_s.arg(i);
    return html;
}

const HostileHtml HostileInputs[] = {
    {"a list with long attributes",
     [](qsizetype n) { return u"<ul"_s + Repeated(u" q"_s, n) + u"><li>x"_s; }},
    {"lines in a block with long attributes",
     [](qsizetype n) { return u"<pre"_s + Repeated(u" q"_s, n / 2) + u">"_s + Repeated(u"x\n"_s, n / 2); }},
    {"line breaks in a block with long attributes",
     [](qsizetype n) { return u"<div"_s + Repeated(u" q"_s, n / 2) + u">"_s + Repeated(u"x<br>"_s, n / 2); }},
    {"line breaks in an in-line element with long attributes",
     [](qsizetype n) { return u"<b"_s + Repeated(u" q"_s, n / 2) + u">"_s + Repeated(u"x<br>"_s, n / 2); }},
    {"blocks in a list with a long alignment",
     [](qsizetype n) {
         return u"<ul align="_s + QString(n / 2, u'q') + u">"_s + Repeated(u"<li>x</li>y"_s, n / 2);
     }},
    {"slashes", [](qsizetype n) { return u"<b"_s + Repeated(u" /"_s, n) + u">x"_s; }},
    {"identifiers", [](qsizetype n) { return u"<p"_s + Repeated(u" id"_s, n) + u">x<br>y<br>z"_s; }},
    {"equals signs", [](qsizetype n) { return u"<p"_s + Repeated(u" ="_s, n) + u">x<br>y"_s; }},
    {"overlapping elements", Overlapping},
    {"distinct tags",
     [](qsizetype n) { return Numbered(n, [](const QString& i) { return u"<x"_s + i + u'>'; }); }},
    {"distinct attributes",
     [](qsizetype n) { return Numbered(n, [](const QString& i) { return u"<p id="_s + i + u">x"_s; }); }},
    {"open quotes", [](qsizetype n) { return Repeated(u"<a =\">\" "_s, n); }},
    {"open quotes of two kinds", [](qsizetype n) { return Repeated(u"<a =\">='>"_s, n); }},
    {"open titles", [](qsizetype n) { return Repeated(u"<title>"_s, n); }},
    {"style sheets without rules", [](qsizetype n) { return Repeated(u"<style>"_s, n) + u"</style>"_s; }},
    {"style sheets before a rule",
     [](qsizetype n) { return Repeated(u"<style></style>"_s, n) + u"<style>{}</style>"_s; }},
    {"open scripts", [](qsizetype n) { return Repeated(u"<script>"_s, n); }},
    {"heads", [](qsizetype n) { return Repeated(u"<head></head>"_s, n); }},
    {"comments", [](qsizetype n) { return Repeated(u"<!--"_s, n); }},
    {"ampersands", [](qsizetype n) { return Repeated(u"&"_s, n); }},
    {"angles", [](qsizetype n) { return Repeated(u"<"_s, n); }},
    {"nested blocks", [](qsizetype n) { return Repeated(u"<div>"_s, n); }},
    {"nested elements", [](qsizetype n) { return Repeated(u"<b>"_s, n); }},
    {"end tags without a start",
     [](qsizetype n) { return Repeated(u"<b>"_s, 300) + Repeated(u"</i>"_s, n); }},
    {"white space", [](qsizetype n) { return Repeated(u" "_s, n); }},
    {"empty lines", [](qsizetype n) { return Repeated(u"<br>"_s, n); }},
    {"one line", [](qsizetype n) { return Repeated(u"x"_s, n); }},
};

QString Written(const TagTable& tags, const std::vector<LinePtr>& lines)
{
    QString html;
    for (const LinePtr& line : lines)
        WriteLine(html, tags, *line);
    return html;
}

qsizetype MarksOf(const std::vector<LinePtr>& lines)
{
    qsizetype marks = 0;
    for (const LinePtr& line : lines)
        marks += qsizetype(line->marks.size());
    return marks;
}

} // namespace

TEST(HtmlHostile, AnyFragmentIsReadInTimeProportionalToItsSize)
{
    constexpr qsizetype Size = 400'000;
    const QString plain = Repeated(u"<p class=a>A short paragraph.</p>\n"_s, Size);
    for (const auto& [name, make] : HostileInputs) {
        const QString html = make(Size);
        const auto read = [](const QString& text) {
            DisplayDocument document;
            document.insertLines(0, text);
        };
        const double ratio = WorkRatio([&] { read(html); }, [&] { read(plain); });
        EXPECT_LT(ratio, 20 * double(html.size()) / double(plain.size())) << name;
        RecordProperty(QString(QLatin1StringView(name)).replace(u' ', u'_').toStdString(),
                       std::to_string(ratio));
    }
}

TEST(HtmlHostile, ThePageOfAnyFragmentIsASmallMultipleOfIt)
{
    constexpr qsizetype Size = 400'000;
    for (const auto& [name, make] : HostileInputs) {
        const QString html = make(Size);
        TagTable tags;
        const HtmlContent content = ReadFragment(tags, html);
        EXPECT_LT(Written(tags, content.lines).size(), 8 * html.size() + 600'000) << name;
        EXPECT_LT(MarksOf(content.lines), 2 * html.size()) << name;
        for (const LinePtr& line : content.lines)
            ASSERT_EQ(reference::lineFault(*line), std::string()) << name;
    }
}

TEST(HtmlHostile, TheTextAfterTheLimitIsKeptWithItsTags)
{
    const QString tag = u"<div"_s + Repeated(u" q"_s, 100'000) + u">"_s;
    TagTable tags;
    const HtmlContent content
        = ReadFragment(tags, tag + u"x<br>"_s.repeated(100) + u"&lt;y&gt;<b>z</b>\r\nlast"_s);
    QStringList lines;
    for (const LinePtr& line : content.lines)
        lines += line->text;
    EXPECT_EQ(lines.join(u'|').count(u'x'), 100);
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines.constFirst(), u"x"_s);
    EXPECT_TRUE(lines[lines.size() - 2].endsWith(u"x<br><y><b>z</b>"_s))
        << lines[lines.size() - 2].toStdString();
    EXPECT_EQ(lines.constLast(), u"last"_s);
    EXPECT_TRUE(content.openEnded);
}

TEST(HtmlHostile, ABlockWithALongStyleKeepsItInThousandsOfLines)
{
    const QString tag = u"<div style=\""_s + Repeated(u"color:red;"_s, 400) + u"\">"_s;
    TagTable tags;
    const HtmlContent content = ReadFragment(tags, tag + u"x<br>"_s.repeated(2000) + u"</div>"_s);
    ASSERT_EQ(content.lines.size(), 2000U);
    for (const LinePtr& line : content.lines)
        ASSERT_EQ(*line, *content.lines.front());
}

TEST(HtmlHostile, EqualShortLinesAreOneObject)
{
    constexpr int Lines = 4000;
    DisplayDocument document;
    document.insertLines(0, u"<p><b>word</b></p>"_s);
    // The new lines are in the element around the caret.
    document.replaceHtml({0, 2}, {0, 2}, u"<pre>"_s + u"ab\nc\nab\n"_s.repeated(Lines));
    ASSERT_EQ(document.lineCount(), 3 * Lines + 2);
    std::set<const Line*> objects;
    for (int i = 0; i < document.lineCount(); ++i)
        objects.insert(&document.line(i));
    EXPECT_EQ(document.line(3 * Lines / 2).marks.size(), 2U);
    EXPECT_EQ(document.line(1).text, u"ab"_s);
    EXPECT_EQ(document.line(2).text, u"c"_s);
    EXPECT_EQ(document.line(3 * Lines - 1).text, u"c"_s);
    // Until there are many lines, only neighbours are shared.
    EXPECT_LT(objects.size(), 1100U);
    EXPECT_LE(sizeof(Line), 40U);
    EXPECT_EQ(sizeof(LinePtr), sizeof(void*));
}

/// The number of different lists, of equal content or not, among the lines from `first` to `last`.
std::size_t ListsOf(const DisplayDocument& document, int first, int last)
{
    std::set<const Mark*> lists;
    for (int i = first; i <= last; ++i)
        lists.insert(document.line(i).marks.begin());
    return lists.size();
}

TEST(HtmlHostile, LinesWithEqualMarksShareThem)
{
    constexpr int Lines = 2000;
    QString many;
    for (int i = 0; i < Lines; ++i)
        many += QString::number(1000 + i) + QString(i % 3, u'x') + u'\n';
    DisplayDocument document;
    document.insertLines(0, u"<p><b>word</b></p>"_s);
    // The new lines are in the element around the caret.
    document.replaceHtml({0, 2}, {0, 2}, u"<pre>"_s + many);
    ASSERT_EQ(document.lineCount(), Lines + 2);
    EXPECT_EQ(ListsOf(document, 1, Lines), 3U);
    const TagId bold = document.line(0).marks[0].tag;
    for (int i = 0; i < Lines; ++i) {
        const MarkList expected = {Mark::opening(0, bold), Mark::closing(4 + i % 3, bold)};
        ASSERT_EQ(document.line(i + 1).marks, expected) << i;
    }
    // The lines of one element, and an edit of one of them.
    document.insertLines(0, u"<pre><i>"_s + many + u"</i></pre>"_s);
    EXPECT_EQ(ListsOf(document, 0, Lines - 1), 3U);
    const Line second = document.line(2);
    document.replaceText({1, 1}, {1, 2}, u"longer"_s);
    EXPECT_EQ(document.line(2), second);
    EXPECT_EQ(document.line(4).marks[1].pos, 5);
}

TEST(HtmlHostile, DifferentMarksRemainDifferent)
{
    QString html;
    for (int i = 0; i < 5000; ++i)
        html += u"<p><x%1>%2</x%1>%3</p>"_s.arg(i % 701).arg(QString(i % 97, u'y')).arg(i);
    DisplayDocument document;
    document.insertLines(0, html);
    for (int i = 0; i < 5000; ++i) {
        const MarkList& marks = document.line(i).marks;
        ASSERT_EQ(marks.size(), 2U) << i;
        ASSERT_EQ(document.tags()[marks[0].tag].name, u"X%1"_s.arg(i % 701)) << i;
        ASSERT_EQ(marks[1], Mark::closing(i % 97, marks[0].tag)) << i;
    }
}

TEST(HtmlHostile, ShortLinesWithEqualTextKeepTheirBlocks)
{
    constexpr int Pairs = 3000;
    TagTable tags;
    const HtmlContent content
        = ReadFragment(tags, u"<p class=a>x</p><p class=b>x</p><p class=b><i>x</i></p>"_s.repeated(Pairs));
    ASSERT_EQ(content.lines.size(), 3U * Pairs);
    for (std::size_t i = 0; i < content.lines.size(); ++i) {
        ASSERT_EQ(tags[content.lines[i]->block].className, i % 3 == 0 ? u"a"_s : u"b"_s) << i;
        ASSERT_EQ(content.lines[i]->marks.size(), i % 3 == 2 ? 2U : 0U) << i;
    }
}

TEST(HtmlHostile, DifferentShortLinesRemainDifferent)
{
    QString html = u"<pre>"_s;
    QStringList texts;
    for (int i = 0; i < 60'000; ++i) {
        texts += i % 3 == 0 ? QString(QChar(char16_t(0x3000 + i % 20'000)))
                            : QString::number(i % 1000) + QString(i % 2, u'x');
        html += texts.constLast() + u'\n';
    }
    DisplayDocument document;
    document.insertLines(0, u"<p id=a><b>word</b></p>"_s);
    document.replaceHtml({0, 2}, {0, 2}, html);
    ASSERT_EQ(document.lineCount(), texts.size() + 2);
    for (int i = 0; i < texts.size(); ++i)
        ASSERT_EQ(document.line(i + 1).text, texts[i]) << i;
}

TEST(HtmlHostile, APageIsReadWithAllItsTags)
{
    QByteArray html;
    for (int i = 0; i < 20'000; ++i)
        html += "<x" + QByteArray::number(i) + ">y</x" + QByteArray::number(i) + ">";
    DisplayDocument document;
    document.loadPage(html);
    ASSERT_EQ(document.lineCount(), 1);
    EXPECT_EQ(document.line(0).text, QString(20'000, u'y'));
    EXPECT_EQ(document.line(0).marks.size(), 40'000U);
}

TEST(HtmlHostile, AFragmentOfTheDocumentsOwnLinesIsReadWithAllItsTags)
{
    DisplayDocument document;
    QString html;
    for (int i = 0; i < 3000; ++i)
        html += u"<p id=a%1><b><i><u>x</u></i></b></p>"_s.arg(i);
    document.insertLines(0, html);
    for (int copies = 0; copies < 3; ++copies) {
        QString own;
        for (int i = 0; i < document.lineCount(); ++i)
            WriteLine(own, document.tags(), document.line(i));
        const int lines = document.lineCount();
        document.insertLines(lines, own);
        ASSERT_EQ(document.lineCount(), 2 * lines);
        EXPECT_EQ(document.line(2 * lines - 1), document.line(lines - 1));
    }
}

TEST(HtmlHostile, EveryAttributeOfANameIsRemoved)
{
    TagTable tags;
    const auto without = [&tags](const QString& attributes) {
        return tags[tags.withAttribute(tags.intern(u"P", attributes), u"id", QString())].attributes;
    };
    EXPECT_EQ(without(u"id=1 a=2 ID b id='x y'"_s), u"a=2  b"_s);
    EXPECT_EQ(without(u"id id id"_s), QString());
    EXPECT_EQ(without(u"a=\"1\"id=2 c"_s), u"a=\"1\" c"_s);
    EXPECT_EQ(without(u"idx=1 xid=2"_s), u"idx=1 xid=2"_s);
}

} // namespace vmk
