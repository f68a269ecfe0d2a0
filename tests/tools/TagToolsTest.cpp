#include "BookVariables.h"
#include "DisplayPage.h"
#include "FileOperations.h"

#include "ListFunctions.h"
#include "SpecialSymbols.h"
#include "TagInsertion.h"
#include "TextFunctions.h"
#include "Workplace.h"

#include <gtest/gtest.h>

/// The lists of tags, the insertion of tags, and the special symbols, without a window.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class TagTools : public testing::Test
{
protected:
    TagTools()
    {
        qputenv("VELLUMARK_CODEPAGE", "1251");
        document.loadPage("<HTML><BODY><DIV><SPAN class=t>&lt;p&gt;</SPAN>one two</DIV><DIV>three</DIV>"
                          "<DIV>four</DIV></BODY></HTML>");
    }
    ~TagTools() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    void Select(Position from, Position to) { document.setSelection(from, to); }
    void Caret(Position at) { document.setSelection(at, at); }
    [[nodiscard]] QStringList Lines() const
    {
        QStringList lines;
        for (int i = 0; i < document.lineCount(); ++i)
            lines.append(document.line(i).text);
        return lines;
    }
    QString Selected() { return page::createRange(document).text(); }
    QString Html(int line) { return page::item(document, line + 1).outerHTML(); }
    void Undo()
    {
        for (int i = 0; i < UndoSteps; ++i)
            document.undo();
    }

    DisplayDocument document;
    const Workplace workplace;
};

const TagPaint Paint = {"<SPAN class=t>&lt;", "&gt;</SPAN>", true};
const QStringList Before = {u"<p>one two"_s, u"three"_s, u"four"_s};

} // namespace

// ---------------------------------------------------------------- list files

TEST_F(TagTools, ALineIsATagAndEmptyLinesAreDropped)
{
    workplace.Make(u"list"_s, "  <p> \r\n\r\n<a :href=\"#\">\r\n   \r\nlast");
    EXPECT_EQ(ReadTagFile(workplace.Path(u"list"_s)),
              (QStringList{u"<p>"_s, u"<a :href=\"#\">"_s, u"last"_s}));
    workplace.Make(u"unix"_s, "<p>\n<a>\n");
    EXPECT_EQ(ReadTagFile(workplace.Path(u"unix"_s)), (QStringList{u"<p>"_s, u"<a>"_s}));
}

TEST_F(TagTools, AMissingFileAndOneOfFourCharactersReturnAnEmptyList)
{
    EXPECT_EQ(ReadTagFile(workplace.Path(u"none"_s)), QStringList());
    workplace.Make(u"short"_s, "<ab>");
    EXPECT_EQ(ReadTagFile(workplace.Path(u"short"_s)), QStringList());
    workplace.Make(u"long"_s, "<ab>\n");
    EXPECT_EQ(ReadTagFile(workplace.Path(u"long"_s)), QStringList{u"<ab>"_s});
}

TEST_F(TagTools, AListIsWrittenTrimmedWithCrLf)
{
    const QString path = workplace.Path(u"list"_s);
    QStringList kept;
    EXPECT_TRUE(WriteTagFile({u" <p> "_s, u"  "_s, u"<я>"_s}, path, kept));
    EXPECT_EQ(kept, (QStringList{u"<p>"_s, u"<я>"_s}));
    EXPECT_EQ(ReadFileText(path), "<p>\r\n<\xff>\r\n");
    EXPECT_EQ(ReadTagFile(path), kept);
}

TEST_F(TagTools, WordsThatTheCodePageLacksAreKept)
{
    const QString path = workplace.Path(u"list"_s);
    const QStringList tags = {u"<p>"_s, u"<日本>"_s, u"<é>"_s};
    QStringList kept;
    EXPECT_TRUE(WriteTagFile(tags, path, kept));
    EXPECT_EQ(ReadTagFile(path), tags);
    EXPECT_EQ(ReadFileText(path), u"<p>\r\n<日本>\r\n<é>\r\n"_s.toStdString());
}

TEST_F(TagTools, AnUnwritableFileIsReported)
{
    QStringList kept;
    EXPECT_FALSE(WriteTagFile({u"<p>"_s}, workplace.Path(u"no/such/folder"_s), kept));
}

TEST_F(TagTools, AnInLineTagIsInLowerCaseWithOnePairOfBrackets)
{
    EXPECT_EQ(InLineTagOf(u"emphasis"_s), u"<emphasis>"_s);
    EXPECT_EQ(InLineTagOf(u" <Emphasis> "_s), u"<emphasis>"_s);
    EXPECT_EQ(InLineTagOf(u"</b>"_s), u"</b>"_s);
    EXPECT_EQ(InLineTagOf(u"a b"_s), u"<ab>"_s);
    EXPECT_EQ(InLineTagOf(u"  "_s), QString());
    EXPECT_EQ(InLineTagOf(u"<>"_s), QString());
}

// ---------------------------------------------------------------- inserting tags

TEST_F(TagTools, ATagIsInsertedAtTheCaret)
{
    Caret({1, 2});
    InsertTagFromList(document, u"<strong>"_s, false, Paint);
    EXPECT_EQ(Lines()[1], u"th<strong>ree"_s);
    EXPECT_EQ(Html(1), u"<DIV>th<SPAN class=t>&lt;strong&gt;</SPAN>ree</DIV>"_s);
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(document.selection().focus, (Position{1, 10}));
    Undo();
    EXPECT_EQ(Lines(), Before);
}

TEST_F(TagTools, ATagAndItsEndTagAreInsertedAroundTheSelectionAndSelected)
{
    Select({0, 3}, {0, 6});
    InsertTagFromList(document, u"<strong>"_s, true, Paint);
    EXPECT_EQ(Lines()[0], u"<p><strong>one</strong> two"_s);
    EXPECT_EQ(Selected(), u"<strong>one</strong>"_s);
    EXPECT_EQ(UndoSteps, 1);
    Undo();
    EXPECT_EQ(Lines(), Before);
}

TEST_F(TagTools, WithoutAnEndTagATagIsInsertedBeforeTheSelection)
{
    Select({0, 3}, {0, 6});
    InsertTagFromList(document, u"<sup>"_s, false, Paint);
    EXPECT_EQ(Lines()[0], u"<p><sup>one two"_s);
}

TEST_F(TagTools, AttributesArePaintedAndTheEndTagHasOnlyTheName)
{
    Select({1, 0}, {1, 5});
    InsertTagFromList(document, u"<a :href=\"#\" type=\"\">"_s, true, Paint);
    EXPECT_EQ(Lines()[1], u"<a :href=\"#\" type=\"\">three</a>"_s);
    EXPECT_TRUE(Html(1).contains(u"<FONT class=n>:href=</FONT><FONT class=v>\"#\"</FONT>"_s))
        << Html(1).toStdString();
}

TEST_F(TagTools, AnEmptyElementOrAnEndTagGetsNoEndTag)
{
    Select({1, 0}, {1, 5});
    InsertTagFromList(document, u"<image :href=\"#\"/>"_s, true, Paint);
    EXPECT_EQ(Lines()[1], u"<image :href=\"#\"/>three"_s);
    Select({2, 0}, {2, 4});
    InsertTagFromList(document, u"</p>"_s, true, Paint);
    EXPECT_EQ(Lines()[2], u"</p>four"_s);
}

TEST_F(TagTools, TagsAroundSelectedLinesAreSeparateLines)
{
    Select({0, 4}, {2, 2});
    InsertTagFromList(document, u"<section id=\"\">"_s, true, Paint);
    EXPECT_EQ(Lines(),
              (QStringList{u"<section id=\"\">"_s, u"<p>one two"_s, u"three"_s, u"four"_s, u"</section>"_s}));
    EXPECT_EQ(UndoSteps, 2);
    Undo();
    EXPECT_EQ(Lines(), Before);
}

TEST_F(TagTools, WithoutAnEndTagSelectedLinesGetOneLineBeforeThem)
{
    Select({1, 0}, {2, 4});
    InsertTagFromList(document, u"<section>"_s, false, Paint);
    EXPECT_EQ(Lines(), (QStringList{u"<p>one two"_s, u"<section>"_s, u"three"_s, u"four"_s}));
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(TagTools, ALineSelectedWithItsBreakKeepsTheBreak)
{
    Select({1, 0}, {2, 0});
    InsertTagFromList(document, u"<sub>"_s, true, Paint);
    EXPECT_EQ(Lines(), (QStringList{u"<p>one two"_s, u"<sub>three</sub>"_s, u"four"_s}));
}

TEST_F(TagTools, InsideATagOnlyTheWordsAreInserted)
{
    Caret({0, 2});
    InsertTagFromList(document, u"< id=\"\" >"_s, false, Paint);
    EXPECT_EQ(Lines()[0], u"<pid=\"\">one two"_s);
    // With an end tag the whole tag is inserted, inside a tag too.
    Undo();
    Caret({0, 2});
    InsertTagFromList(document, u"<b>"_s, true, Paint);
    EXPECT_EQ(Lines()[0], u"<p<b></b>>one two"_s);
}

TEST_F(TagTools, SuperfluousBlanksInATagAreRemoved)
{
    Caret({1, 0});
    InsertTagFromList(document, u"< image   :href=\"#\" />"_s, false, Paint);
    EXPECT_EQ(Lines()[1], u"<image :href=\"#\"/>three"_s);
    Caret({2, 0});
    InsertTagFromList(document, u"  word  "_s, true, Paint);
    EXPECT_EQ(Lines()[2], u"word</word>four"_s);
}

TEST_F(TagTools, AmpersandsOfATagAreText)
{
    Caret({1, 0});
    InsertTagFromList(document, u"<a :href=\"#x&lt;\">"_s, false, Paint);
    EXPECT_EQ(Lines()[1], u"<a :href=\"#x&lt;\">three"_s);
}

// ---------------------------------------------------------------- special symbols

TEST_F(TagTools, ASymbolIsInsertedAfterTheSelection)
{
    Select({1, 0}, {1, 3});
    InsertSpecialCharacter(document, 151);
    EXPECT_EQ(Lines()[1], u"thr\u2014ee"_s);
    EXPECT_EQ(document.selection().focus, (Position{1, 4}));
    EXPECT_TRUE(document.selection().isEmpty());
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    Undo();
    EXPECT_EQ(Lines(), Before);
}

TEST_F(TagTools, EachSymbolIsTheCharacterOfItsCode)
{
    const QHash<QString, QString> expected = {{u"FrenchLeft"_s, u"«"_s},
                                              {u"FrenchRight"_s, u"»"_s},
                                              {u"DoubleUpperLeft"_s, u"\u201C"_s},
                                              {u"DoubleUpperRight"_s, u"\u201D"_s},
                                              {u"SingleUpperLeft"_s, u"\u2018"_s},
                                              {u"SingleUpperRight"_s, u"\u2019"_s},
                                              {u"SingleLowerTwo"_s, u"\u201E"_s},
                                              {u"SingleLowerOne"_s, u"\u201A"_s},
                                              {u"ThreePoints"_s, u"\u2026"_s},
                                              {u"Smaller"_s, u"\u2039"_s},
                                              {u"Bigger"_s, u"\u203A"_s},
                                              {u"Par"_s, u"§"_s},
                                              {u"TM"_s, u"™"_s},
                                              {u"CopyR"_s, u"©"_s},
                                              {u"R"_s, u"®"_s},
                                              {u"PlusMinus"_s, u"±"_s},
                                              {u"Degree"_s, u"°"_s},
                                              {u"Mu"_s, u"µ"_s}};
    EXPECT_EQ(qsizetype(SingleSymbolTable().size()), expected.size());
    for (const SingleSymbol& row : SingleSymbolTable())
        EXPECT_EQ(SymbolText(row.code), expected[QLatin1StringView(row.button)]) << row.button;
}

TEST_F(TagTools, APairIsInsertedAroundTheSelection)
{
    Select({0, 3}, {0, 6});
    InsertSpecialSymbols(document, u"FrenchBrackets"_s, QString());
    EXPECT_EQ(Lines()[0], u"<p>«one» two"_s);
    EXPECT_EQ(document.selection().focus, (Position{0, 8}));
    Caret({1, 0});
    InsertSpecialSymbols(document, u"LowerCavich"_s, QString());
    EXPECT_EQ(Lines()[1], u"\u201E\u201Ethree"_s);
    EXPECT_EQ(document.selection().focus, (Position{1, 2}));
    EXPECT_EQ(UndoSteps, 1);
    InsertSpecialSymbols(document, u"Nothing"_s, QString());
    EXPECT_EQ(Lines()[1], u"\u201E\u201Ethree"_s);
}

TEST_F(TagTools, APairAroundLinesKeepsTheTextAndLosesThePainting)
{
    Select({0, 0}, {1, 5});
    InsertSpecialSymbols(document, u"UpperCavich"_s, QString());
    EXPECT_EQ(Lines(), (QStringList{u"\u201C<p>one two"_s, u"three\u201D"_s, u"four"_s}));
    EXPECT_FALSE(Html(0).contains(u"SPAN"_s));
    Undo();
    EXPECT_EQ(Lines(), Before);
}

TEST_F(TagTools, NumbersInsertTheirCharactersInOneStep)
{
    EXPECT_EQ(TextOfNumbers(u"65 66"_s), u"AB"_s);
    EXPECT_EQ(TextOfNumbers(u"171 8212 187"_s), u"«\u2014»"_s);
    EXPECT_EQ(TextOfNumbers(u"128512"_s), u"\U0001F600"_s);
    EXPECT_EQ(TextOfNumbers(u"55357 56832"_s), u"\U0001F600"_s);
    EXPECT_EQ(TextOfNumbers(u"65x 66"_s), u"AB"_s);
    Caret({1, 0});
    InsertSpecialSymbols(document, QLatin1StringView(UserAsciiKind), u" 65 66 "_s);
    EXPECT_EQ(Lines()[1], u"ABthree"_s);
}

TEST_F(TagTools, NumbersWithoutACharacterInsertNothing)
{
    // A double blank is a piece that counts as code 0.
    EXPECT_EQ(TextOfNumbers(u"65  66"_s), u"AB"_s);
    for (const QString& numbers : {u"0"_s, u"x65"_s, u"1114112"_s, u"99999999999999999999"_s, u"55357"_s,
                                   u"56832 55357"_s, u"-65"_s, QString()})
        EXPECT_EQ(TextOfNumbers(numbers), QString()) << numbers.toStdString();
    BookUnchanged = true;
    InsertSpecialSymbols(document, QLatin1StringView(UserAsciiKind), u"0"_s);
    EXPECT_TRUE(BookUnchanged);
    EXPECT_EQ(Lines(), Before);
}

} // namespace vmk
