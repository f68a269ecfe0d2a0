#include "CommandText.h"

#include "QtPrinting.h"

#include <gtest/gtest.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace vmk {

static void PrintTo(const StartOrder& order, std::ostream* out)
{
    *out << int(order.course) << " [" << order.path.toStdString() << "]";
}

} // namespace vmk

namespace {

StartOrder Load(const QString& path)
{
    return {StartCourse::LoadBook, path};
}

StartOrder Validate(const QString& path)
{
    return {StartCourse::ValidateBook, path};
}

} // namespace

TEST(CommandText, ArgumentsAreJoinedByOneBlank)
{
    EXPECT_EQ(CommandText({}), QString());
    EXPECT_EQ(CommandText({u"book.fb2"_s, u"-V"_s}), u"book.fb2 -V"_s);
}

TEST(CommandText, AnArgumentWithBlanksNeedsNoAddedQuotes)
{
    EXPECT_EQ(ReadCommandText(CommandText({u"my book.fb2"_s, u"-L"_s})), Load(u"my book.fb2"_s));
    EXPECT_EQ(ReadCommandText(CommandText({u"my book.fb2"_s})), Load(u"my book.fb2"_s));
}

TEST(CommandText, QuotesThatReachTheProgramStay)
{
    EXPECT_EQ(CommandText({u"\"my book.fb2\""_s}), u"\"my book.fb2\""_s);
}

TEST(ReadCommandText, AnEmptyTextOpensTheMainWindow)
{
    EXPECT_EQ(ReadCommandText(QString()), StartOrder());
}

TEST(ReadCommandText, ABarePathIsLoaded)
{
    EXPECT_EQ(ReadCommandText(u"/books/a b.fb2"_s), Load(u"/books/a b.fb2"_s));
}

TEST(ReadCommandText, AQuotedPathIsReturnedWithoutQuotes)
{
    EXPECT_EQ(ReadCommandText(u"\"C:\\My Books\\a.fb2\""_s), Load(u"C:\\My Books\\a.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"\"a -V\""_s), Load(u"a -V"_s));
    EXPECT_EQ(ReadCommandText(u"\"\""_s), Load(QString()));
    EXPECT_EQ(ReadCommandText(u"\""_s), Load(QString()));
}

TEST(ReadCommandText, AQuotedPathBeforeAnOptionKeepsItsQuotes)
{
    EXPECT_EQ(ReadCommandText(u"\"C:\\My Books\\a.fb2\" -L"_s), Load(u"\"C:\\My Books\\a.fb2\""_s));
    EXPECT_EQ(ReadCommandText(u"\"a.fb2\" -V"_s), Validate(u"\"a.fb2\""_s));
}

TEST(ReadCommandText, AnOptionFollowsThePath)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2 -L"_s), Load(u"book.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"book.fb2 -V"_s), Validate(u"book.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"-V book.fb2"_s), Load(u"-V book.fb2"_s));
}

TEST(ReadCommandText, OptionLettersAreUpperCase)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2 -v"_s), Load(u"book.fb2 -v"_s));
    EXPECT_EQ(ReadCommandText(u"book.fb2 -l"_s), Load(u"book.fb2 -l"_s));
}

TEST(ReadCommandText, OnlyTheLastOptionIsCutFromThePath)
{
    EXPECT_EQ(ReadCommandText(u"a-V/b -V.fb2 -V"_s), Validate(u"a-V/b -V.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"a-V/b.fb2 -L"_s), Load(u"a-V/b.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"a-L/b-V"_s), Validate(u"a-L/"_s));
}

TEST(ReadCommandText, APathWithAHyphenAndNoOptionIsAPath)
{
    EXPECT_EQ(ReadCommandText(u"well-known.fb2"_s), Load(u"well-known.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"a-Very-Long.fb2"_s), Load(u"a-Very-Long.fb2"_s));
    EXPECT_EQ(ReadCommandText(u"a-"_s), Load(u"a-"_s));
}

TEST(ReadCommandText, TwoBlanksBeforeTheOptionLeaveOneAtThePathsEnd)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2  -V"_s), Validate(u"book.fb2 "_s));
}

TEST(ReadCommandText, WithoutABlankBeforeTheOptionTheLastCharacterOfThePathIsCut)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2-L"_s), Load(u"book.fb"_s));
}

TEST(ReadCommandText, BlanksAfterTheOptionAreIgnored)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2 -V  "_s), Validate(u"book.fb2"_s));
}

TEST(ReadCommandText, ALetterSeparatedFromItsHyphenLeavesNoPath)
{
    EXPECT_EQ(ReadCommandText(u"book.fb2 - L"_s), Load(QString()));
    EXPECT_EQ(ReadCommandText(u"a -L b - L"_s), Load(u"a"_s));
}

TEST(ReadCommandText, AnOptionAloneHasAnEmptyPath)
{
    EXPECT_EQ(ReadCommandText(u"-L"_s), Load(QString()));
    EXPECT_EQ(ReadCommandText(u" -V"_s), Validate(QString()));
}
