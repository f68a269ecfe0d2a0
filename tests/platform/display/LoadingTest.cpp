#include "DisplayDocument.h"
#include "DisplayElement.h"
#include "TextRange.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <random>
#include <utility>

// A page that is loaded piece by piece: to every caller it is the whole page.

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr int LinesOfPiece = 20;
const QByteArray Front = "<HTML><HEAD></HEAD><BODY text=\"#000000\">\r\n</BODY></HTML>";

QString TextOfLine(int index)
{
    return u"line %1 с текстом"_s.arg(index);
}

/// Lines in pieces; the next piece is ready only if `ready` is set.
class Pieces final : public LineSource
{
public:
    Pieces(DisplayDocument& document, int lineCount)
        : block(document.tags().intern(u"DIV", {}))
        , count(lineCount)
    {
    }
    std::vector<LinePtr> next() override
    {
        std::vector<LinePtr> piece;
        for (int i = 0; i < LinesOfPiece && made < count; ++i, ++made)
            piece.push_back(MakeLine({block, TextOfLine(made), {}}));
        return piece;
    }
    bool isReady() override { return ready; }

    bool ready = true;

private:
    TagId block;
    int count;
    int made = 0;
};

void Load(DisplayDocument& document, int lines)
{
    document.loadLines(Front, std::make_unique<Pieces>(document, lines));
}

TEST(Loading, TheFirstPieceIsThereAtOnceAndAnyUseOfAllLinesLoadsTheRest)
{
    DisplayDocument document;
    Load(document, 100);
    EXPECT_EQ(document.loadedLineCount(), LinesOfPiece);
    EXPECT_FALSE(document.isComplete());
    EXPECT_EQ(document.lineCount(), 100);
    EXPECT_TRUE(document.isComplete());
    EXPECT_EQ(document.line(99).text, TextOfLine(99));
    EXPECT_TRUE(document.pageFront().contains("text=\"#000000\""));
}

TEST(Loading, EachUseOfTheWholePageSeesTheWholePage)
{
    const std::vector<std::function<QString(DisplayDocument&)>> uses = {
        [](DisplayDocument& document) { return QString::fromUtf8(document.savePage()); },
        [](DisplayDocument& document) { return QString::number(document.end().line); },
        [](DisplayDocument& document) { return QString::number(document.positionAt(1'500).line); },
        [](DisplayDocument& document) {
            return QString::number(document.characterIndex({70, 2}));
        },
        [](DisplayDocument& document) {
            return QString::number(document.valid({1'000, 0}).line);
        },
        [](DisplayDocument& document) {
            TextRange range(document, {}, {});
            return range.findText(TextOfLine(97)) ? range.htmlText() : QString();
        },
        [](DisplayDocument& document) {
            TextRange range(document, {}, {});
            range.moveEnd(TextUnit::Textedit, 1);
            return range.text();
        },
        [](DisplayDocument& document) {
            document.deleteRange({0, 0}, document.end());
            document.undo();
            return QString::fromUtf8(document.savePage());
        },
        [](DisplayDocument& document) {
            document.insertLines(1'000, u"<DIV>new</DIV>");
            return QString::fromUtf8(document.savePage());
        },
        [](DisplayDocument& document) {
            // At the last line that is loaded.
            document.setSelection({LinesOfPiece - 1, 0}, {LinesOfPiece - 1, 200});
            document.setSelection(document.selection().focus, document.selection().focus);
            document.deleteForward();
            return QString::fromUtf8(document.savePage());
        },
    };
    for (std::size_t i = 0; i < uses.size(); ++i) {
        SCOPED_TRACE(i);
        DisplayDocument whole;
        Load(whole, 100);
        ASSERT_EQ(whole.lineCount(), 100);
        DisplayDocument document;
        Load(document, 100);
        EXPECT_EQ(uses[i](document), uses[i](whole));
    }
}

TEST(Loading, TypingAtTheFirstLinesWaitsForNothing)
{
    DisplayDocument document;
    Load(document, 100);
    document.setSelection({3, 4}, {3, 4});
    document.typeText(u"а"_s);
    document.typeText(u"б"_s);
    document.insertLineBreak();
    document.deleteBackward();
    document.deleteForward();
    document.undo();
    document.undo();
    document.setSelection({5, 0}, {7, 3});
    document.deleteSelection();
    document.setBlock(2, document.tags().intern(u"P", {}));
    EXPECT_TRUE(DisplayElement(document, 4).exists());
    EXPECT_FALSE(document.isComplete());
    EXPECT_EQ(document.loadedLineCount(), LinesOfPiece - 1);
}

TEST(Loading, APageWithoutLinesIsOneEmptyLine)
{
    DisplayDocument document;
    Load(document, 0);
    EXPECT_EQ(document.lineCount(), 1);
    EXPECT_TRUE(document.isComplete());
}

TEST(Loading, AnotherPageReplacesTheRest)
{
    DisplayDocument document;
    Load(document, 100);
    document.loadPage("<HTML><BODY><DIV>other</DIV></BODY></HTML>");
    EXPECT_TRUE(document.isComplete());
    EXPECT_EQ(document.lineCount(), 1);
    Load(document, 60);
    Load(document, 40);
    EXPECT_EQ(document.lineCount(), 40);
}

/// Keeps a copy of the lines as the notifications describe them.
class Mirror final : public DisplayListener
{
public:
    explicit Mirror(DisplayDocument& mirrored)
        : document(mirrored)
    {
    }
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override
    {
        ++changes;
        lines.erase(lines.begin() + first, lines.begin() + first + std::ptrdiff_t(removed.size()));
        lines.insert(lines.begin() + first, inserted.begin(), inserted.end());
    }
    void linesLoaded(int first, const std::vector<LinePtr>& loaded) override
    {
        EXPECT_EQ(first, int(lines.size()));
        // A listener sees the lines that are loaded; a question about all of them would never end.
        EXPECT_EQ(document.loadedLineCount(), first + int(loaded.size()));
        lines.insert(lines.end(), loaded.begin(), loaded.end());
    }
    void selectionChanged() override { }
    void documentReset() override
    {
        lines.clear();
        for (int i = 0; i < document.loadedLineCount(); ++i)
            lines.push_back(document.linePtr(i));
    }

    std::vector<LinePtr> lines;
    int changes = 0;

private:
    DisplayDocument& document;
};

TEST(Loading, ListenersSeeLoadedLinesAsNoChange)
{
    DisplayDocument document;
    Mirror mirror(document);
    document.setListener(&mirror);
    Load(document, 100);
    while (document.loadMore()) { }
    EXPECT_EQ(mirror.changes, 0);
    EXPECT_EQ(int(mirror.lines.size()), 100);
    EXPECT_FALSE(document.canUndo());
    document.setListener(nullptr);
}

/// A listener, or a source, without memory for the next call.
class WithoutMemory final : public DisplayListener
{
public:
    void linesChanged(int, const std::vector<LinePtr>&, const std::vector<LinePtr>&) override
    {
        if (std::exchange(fails, false))
            throw std::bad_alloc();
    }
    void selectionChanged() override { }
    void documentReset() override { }
    bool fails = true;
};

class FailingPieces final : public LineSource
{
public:
    explicit FailingPieces(DisplayDocument& document)
        : pieces(document, 100)
    {
    }
    std::vector<LinePtr> next() override
    {
        if (++calls == 3)
            throw std::bad_alloc();
        return pieces.next();
    }
    bool isReady() override { return true; }

private:
    Pieces pieces;
    int calls = 0;
};

TEST(Loading, NoLineIsLostIfMemoryRunsOutDuringALoad)
{
    DisplayDocument document;
    WithoutMemory listener;
    document.setListener(&listener);
    Load(document, 100);
    EXPECT_THROW(static_cast<void>(document.lineCount()), std::bad_alloc);
    EXPECT_EQ(document.lineCount(), 100);
    document.setListener(nullptr);

    document.loadLines(Front, std::make_unique<FailingPieces>(document));
    EXPECT_THROW(static_cast<void>(document.savePage()), std::bad_alloc);
    EXPECT_EQ(document.lineCount(), 100);
    for (int i = 0; i < document.lineCount(); ++i)
        EXPECT_EQ(document.line(i).text, TextOfLine(i));
}

/// One random edit; the same for both documents.
void RandomEdit(DisplayDocument& document, std::mt19937& random)
{
    const auto below = [&random](int count) { return int(random() % unsigned(count)); };
    const auto place = [&] { return Position{below(130), below(25)}; };
    switch (below(11)) {
    case 0:
    case 1:
        document.setSelection(place(), place());
        break;
    case 2:
        document.typeText(QString(1 + below(3), u'я'));
        break;
    case 3:
        document.insertLineBreak();
        break;
    case 4:
        document.deleteBackward();
        break;
    case 5:
        document.deleteForward();
        break;
    case 6:
        document.undo(1 + below(2));
        break;
    case 7:
        document.redo();
        break;
    case 8: {
        const Position at = document.valid({below(20), below(9)});
        document.replaceText(at, at, u"a\nb"_s);
        break;
    }
    case 9: {
        const Position at{below(20), 0};
        document.setSelection(at, at);
        document.replaceHtml(document.valid(at), document.valid(at), u"<B>x</B><DIV>y</DIV>");
        break;
    }
    default: {
        TextRange range(document, document.valid(place()), document.valid(place()));
        range.move(TextUnit::Character, below(400) - 200);
        range.select();
    }
    }
}

TEST(Loading, EditsDuringLoadingHaveTheSameResultAsAfterIt)
{
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE(seed);
        DisplayDocument whole;
        Load(whole, 120);
        ASSERT_EQ(whole.lineCount(), 120);
        DisplayDocument document;
        Mirror mirror(document);
        document.setListener(&mirror);
        Load(document, 120);
        std::mt19937 random(seed);
        std::mt19937 same(seed);
        std::mt19937 moments(seed + 1'000);
        for (int step = 0; step < 40; ++step) {
            RandomEdit(whole, random);
            RandomEdit(document, same);
            ASSERT_EQ(document.selection(), whole.selection()) << step;
            if (moments() % 9 == 0)
                document.loadMore();
        }
        ASSERT_EQ(document.savePage(), whole.savePage());
        ASSERT_EQ(document.undoSteps(), whole.undoSteps());
        ASSERT_EQ(int(mirror.lines.size()), document.lineCount());
        for (int i = 0; i < document.lineCount(); ++i)
            ASSERT_EQ(*mirror.lines[std::size_t(i)], document.line(i));
        document.setListener(nullptr);
    }
}

} // namespace
} // namespace vmk
