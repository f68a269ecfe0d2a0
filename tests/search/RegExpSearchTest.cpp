#include "SearchFixture.h"

#include <chrono>
#include <thread>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class RegExpSearch : public SearchFixture
{
protected:
    /// One line of so many characters, in words of nine letters and a blank.
    static QString lineOf(int characters)
    {
        return u"<DIV>"_s + u"abcdefghi "_s.repeated(characters / 10 + 1).left(characters - 1) + u"x</DIV>"_s;
    }
};

TEST_F(RegExpSearch, MatchesAreFoundOneAfterTheOther)
{
    show(u"<DIV>cat 12</DIV><DIV>345 dog</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\d+"_s));
    EXPECT_EQ(selected(), u"12"_s);
    EXPECT_TRUE(findRegExp(u"\\d+"_s));
    EXPECT_EQ(selected(), u"345"_s);
    EXPECT_EQ(report, u"Found: 2 Replaced: 0"_s);
    EXPECT_FALSE(findRegExp(u"\\d+"_s));
    EXPECT_EQ(report, u"Search finished. Found: 2 Replaced: 0"_s);
}

TEST_F(RegExpSearch, OnlyTheTextOfAMatchIsCarriedToTheDocument)
{
    show(u"<DIV>concat cat</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\bcat\\b"_s));
    EXPECT_EQ(hit(), (Position{0, 3}));
}

TEST_F(RegExpSearch, AMatchMaySpanALineBreak)
{
    show(u"<DIV>one</DIV><DIV>two</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"e\\rt"_s));
    EXPECT_EQ(selected(), u"e\r\nt"_s);
}

TEST_F(RegExpSearch, AMatchThatSpansTheEdgeOfAChunkIsNotFound)
{
    show(lineOf(120'000));
    GetRegExpChunk(state, true);
    const qsizetype edge = state.RegExpChunkText.size();
    QString line = document.line(0).text;
    line.replace(edge - 4, 8, u"1234 678"_s);
    show(u"<DIV>"_s + line + u"</DIV>"_s);
    EXPECT_FALSE(findRegExp(u"1234 678"_s));
    start();
    EXPECT_TRUE(findRegExp(u"\\d+"_s));
    EXPECT_EQ(selected(), u"1234"_s);
}

TEST_F(RegExpSearch, AnEmptyMatchIsNone)
{
    show(u"<DIV>abc</DIV>"_s);
    EXPECT_FALSE(findRegExp(u"x*"_s));
    EXPECT_FALSE(findRegExp(u""_s));
    EXPECT_FALSE(findRegExp(u"  "_s));
}

TEST_F(RegExpSearch, AnEmptyMatchAdvancesByOneCharacter)
{
    state.RegExpChunkText = u"abc"_s;
    EXPECT_EQ(RegExpFirstMatch(state, u"x*"_s, true), u""_s);
    EXPECT_EQ(state.RegExpChunkText, u"bc"_s);
    EXPECT_EQ(RegExpFirstMatch(state, u"b"_s, true), u"b"_s);
    EXPECT_EQ(state.RegExpChunkText, u"c"_s);
    EXPECT_EQ(RegExpFirstMatch(state, u"c"_s, true), u"c"_s);
    EXPECT_TRUE(state.RegExpChunkText.isEmpty());
}

TEST_F(RegExpSearch, ATextFoundInALaterChunkHidesNoMatchOfThatChunk)
{
    // The entity of the first chunk is found as text near the end of the second one; the "q" after it in the
    // first chunk is then not found, but the "q" at the start of the second chunk is.
    const QString filler = u"word "_s.repeated(9'998);
    show(u"<DIV>&amp;x q "_s + filler + u" q "_s + filler + u"&amp;amp;x</DIV>"_s);
    EXPECT_EQ(replaceAllRegExp(u"&amp;x|q"_s, u"Z"_s), 2);
    EXPECT_TRUE(document.line(0).text.startsWith(u"&x q"_s));
    EXPECT_TRUE(document.line(0).text.contains(u" Z "_s));
    EXPECT_TRUE(document.line(0).text.endsWith(u" Z"_s));
}

TEST_F(RegExpSearch, ABadPatternFindsNothing)
{
    show(u"<DIV>abc(</DIV>"_s);
    EXPECT_FALSE(findRegExp(u"("_s));
    EXPECT_EQ(report, u"Search finished. Found: 0 Replaced: 0"_s);
    EXPECT_EQ(replaceAllRegExp(u"("_s, u"x"_s), 0);
    EXPECT_TRUE(beep);
    EXPECT_EQ(text(), u"abc("_s);
}

TEST_F(RegExpSearch, AnEntityInAMatchHidesIt)
{
    show(u"<DIV>a &amp; b c</DIV>"_s);
    EXPECT_FALSE(findRegExp(u"a &amp; b"_s));
    start();
    EXPECT_EQ(replaceAllRegExp(u"&amp;|c"_s, u"x"_s), 1);
    EXPECT_EQ(text(), u"a & b x"_s);
}

TEST_F(RegExpSearch, ATemplateIsAppliedToTheMatchAlone)
{
    EXPECT_EQ(RegExpReplaceMatch(u"ab"_s, u"$2-$1"_s, u"(a)(b)"_s, true), u"b-a"_s);
    EXPECT_EQ(RegExpReplaceMatch(u"xab"_s, u"$2-$1"_s, u"(a)(b)"_s, true), u"b-a"_s);
    EXPECT_EQ(RegExpReplaceMatch(u"ab"_s, u"$1"_s, u"ab"_s, true), u"$1"_s);
    EXPECT_EQ(RegExpReplaceMatch(u"AB"_s, u"$&"_s, u"ab"_s, true), u""_s);
    EXPECT_EQ(RegExpReplaceMatch(u"AB"_s, u"$&"_s, u"ab"_s, false), u"AB"_s);
    // Assertions do not see the context of the match.
    EXPECT_EQ(RegExpReplaceMatch(u"foo"_s, u"$&"_s, u"foo(?=bar)"_s, true), u""_s);
    EXPECT_EQ(RegExpReplaceMatch(u"foo"_s, u"$&"_s, u"foo("_s, true), std::nullopt);
}

TEST_F(RegExpSearch, AReplacementWithADollarIsATemplate)
{
    show(u"<DIV>well-known fact</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"(\\w+)-(\\w+)"_s));
    const ReplaceResult result = RegExpReplaceHit(state, u"$2 uni(65) $1"_s, u"(\\w+)-(\\w+)"_s, options);
    EXPECT_EQ(text(), u"known uni(65) well fact"_s);
    EXPECT_EQ(selected(), u"known uni(65) well"_s);
    EXPECT_EQ(result.report, u"Found: 1 Replaced: 1"_s);
}

TEST_F(RegExpSearch, AReplacementWithoutADollarMayNameCharacters)
{
    show(u"<DIV>a1</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\d"_s));
    (void)RegExpReplaceHit(state, u"uni(65)"_s, u"\\d"_s, options);
    EXPECT_EQ(text(), u"aA"_s);
}

TEST_F(RegExpSearch, ReplaceAllWithATemplate)
{
    show(u"<DIV>a-b <B>c-d</B></DIV><DIV>e-f</DIV>"_s);
    EXPECT_EQ(replaceAllRegExp(u"(\\w+)-(\\w+)"_s, u"$2-$1"_s), 3);
    EXPECT_EQ(text(), u"b-a d-c|f-e"_s);
    EXPECT_EQ(html(0), u"b-a <B>d-c</B>"_s);
    EXPECT_EQ(report, u"Replaced: 3"_s);
    EXPECT_EQ(selected(), u"f-e"_s);
    EXPECT_TRUE(state.SearchRange.isNull());
    undo(3);
    EXPECT_EQ(text(), u"a-b c-d|e-f"_s);
    // Only a new search sets a position.
    EXPECT_FALSE(find(u"a"_s));
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 0);
    start();
    EXPECT_TRUE(find(u"a"_s));
}

TEST_F(RegExpSearch, ReplaceAllDoesNotReplaceTheSelectedHit)
{
    show(u"<DIV>1 2 3</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\d"_s));
    EXPECT_EQ(replaceAllRegExp(u"\\d"_s, u"x"_s), 2);
    EXPECT_EQ(text(), u"1 x x"_s);
    EXPECT_EQ(report, u"Replaced: 2"_s);
}

TEST_F(RegExpSearch, ReplaceAllFindsTheTextOfAMatchInAnyCase)
{
    show(u"<DIV>CAT cat</DIV>"_s);
    options.matchCase = true;
    EXPECT_EQ(replaceAllRegExp(u"cat"_s, u"x"_s), 1);
    EXPECT_EQ(text(), u"x cat"_s);
}

TEST_F(RegExpSearch, AMarkIsAsLongAsTheTemplate)
{
    show(u"<DIV>abc12</DIV>"_s);
    options.markReplaced = true;
    EXPECT_EQ(replaceAllRegExp(u"(\\d)\\d"_s, u"$1"_s), 2);
    EXPECT_EQ(html(0), u"ab<FONT style=\"BACKGROUND-COLOR: #ffb848\">c1</FONT>"_s);
    undo(2);
    EXPECT_EQ(html(0), u"abc12"_s);
}

TEST_F(RegExpSearch, AStoppedRunKeepsTheReplacementBeforeTheStop)
{
    show(u"<DIV>1 2 3</DIV>"_s);
    // Events are processed before the first chunk, and after a replacement that takes long enough.
    int calls = 0;
    events.processEvents = [&] { state.StopRequested = ++calls > 1; };
    events.report = [](const QString&) { std::this_thread::sleep_for(std::chrono::milliseconds(50)); };
    EXPECT_EQ(replaceAllRegExp(u"\\d"_s, u"x"_s), 1);
    EXPECT_EQ(text(), u"x 2 3"_s);
    EXPECT_FALSE(state.StopRequested);
}

TEST_F(RegExpSearch, WithoutAPatternNothingIsReplaced)
{
    show(u"<DIV>a</DIV>"_s);
    EXPECT_EQ(replaceAllRegExp(u""_s, u"x"_s), 0);
    EXPECT_EQ(report, u"Replaced: 0"_s);
    EXPECT_TRUE(beep);
}

TEST_F(RegExpSearch, FiftyThousandCharactersAreOneChunk)
{
    show(lineOf(50'000));
    GetRegExpChunk(state, true);
    EXPECT_FALSE(state.ChunkModeStarted);
    EXPECT_EQ(state.RegExpChunkText.size(), 50'000);
    EXPECT_FALSE(NextRegExpChunk(state));
}

TEST_F(RegExpSearch, ALongerScopeIsDividedThreeWordsBeforeTheEdge)
{
    show(lineOf(50'001));
    GetRegExpChunk(state, true);
    EXPECT_TRUE(state.ChunkModeStarted);
    EXPECT_TRUE(state.ChunksRemain);
    EXPECT_EQ(state.RegExpChunkText.size(), 50'000 - 30);
    EXPECT_TRUE(NextRegExpChunk(state));
    EXPECT_FALSE(state.ChunksRemain);
    EXPECT_TRUE(state.RegExpChunkText.isEmpty());
    GetRegExpChunk(state, true);
    EXPECT_EQ(state.RegExpChunkText.size(), 31);
    EXPECT_FALSE(NextRegExpChunk(state));
}

TEST_F(RegExpSearch, TheNumberOfChunksIsRounded)
{
    show(lineOf(60'000));
    GetRegExpChunk(state, true);
    EXPECT_EQ(state.RegExpChunkCount, 1);
    EXPECT_EQ(state.RegExpMaxChunks, 2);
}

TEST_F(RegExpSearch, ALongScopeIsReplacedChunkByChunk)
{
    show(lineOf(120'000));
    EXPECT_EQ(replaceAllRegExp(u"a(b)"_s, u"$1a"_s), 12'000);
    EXPECT_EQ(document.line(0).text.count(u"bacdefghi"_s), 12'000);
    EXPECT_TRUE(reports.contains(u"Chunk 1 of 2 Replaced: 0"_s));
    EXPECT_TRUE(reports.contains(u"Chunk 1 of 2 Match 100 of 4997 Replaced: 100"_s));
    EXPECT_TRUE(reports.contains(u"Match 6 of 2006 Replaced: 10000"_s));
    EXPECT_EQ(report, u"Replaced: 12000"_s);
}

TEST_F(RegExpSearch, AMatchInALaterChunkIsFound)
{
    show(lineOf(120'000) + u"<DIV>123</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\d+"_s));
    EXPECT_EQ(selected(), u"123"_s);
}

TEST_F(RegExpSearch, ARunWithMoreChunksThanExpectedEndsWithoutAReport)
{
    // Three words are most of a chunk here, so each chunk is much shorter than expected.
    const QString longWord(24'000, u'w');
    show(u"<DIV>"_s + (u"a "_s + longWord + u' ').repeated(40) + u"</DIV>"_s);
    beep = true;
    EXPECT_GT(replaceAllRegExp(u"a"_s, u"x"_s), 0);
    EXPECT_FALSE(beep);
    EXPECT_TRUE(report.isEmpty());
    EXPECT_GT(text().count(u'a'), 0);
}

TEST_F(RegExpSearch, AWordLongerThanAChunkIsCut)
{
    show(u"<DIV>"_s + QString(120'000, u'w') + u"1</DIV>"_s);
    EXPECT_TRUE(findRegExp(u"\\d"_s));
}

TEST_F(RegExpSearch, ABacktrackingPatternEndsTheSearchSoon)
{
    show(lineOf(50'000).replace(u' ', u'x') + lineOf(200'000).replace(u' ', u'x'));
    EXPECT_FALSE(findRegExp(u"(\\w+)+[!?]"_s));
    EXPECT_EQ(report, u"Search finished. Found: 0 Replaced: 0"_s);
}

TEST_F(RegExpSearch, CharactersAsEscapes)
{
    show(u"<DIV>a\u041f&nbsp;\u9000&lt;</DIV><DIV>abcdefghijklm</DIV>"_s);
    const auto escapes = [this](int line, int from, int to) {
        return SelectionAsRegExpHex(TextRange(document, {line, from}, {line, to}));
    };
    EXPECT_EQ(escapes(0, 0, 1), u"\\x61"_s);
    EXPECT_EQ(escapes(0, 1, 2), u"\\u041f"_s);
    EXPECT_EQ(escapes(0, 2, 3), u"\\xa0"_s);
    // At a caret, the character after it; characters from U+8000 on have no escape.
    EXPECT_EQ(escapes(0, 0, 0), u"\\x61"_s);
    EXPECT_EQ(escapes(0, 3, 3), u""_s);
    EXPECT_EQ(escapes(0, 1, 4), u"\\u041f\\xa0"_s);
    EXPECT_EQ(escapes(0, 4, 5), u"\\x3c"_s);
    EXPECT_EQ(escapes(1, 0, 13), u"\\x61\\x62\\x63\\x64\\x65\\x66\\x67\\x68\\x69\\x6a"_s);
}

} // namespace
} // namespace vmk
