#include "BookTestSupport.h"
#include "BookToDisplay.h"
#include "CaretTag.h"
#include "ClipboardRules.h"
#include "CommandModel.h"
#include "Desktop.h"
#include "FieldRules.h"
#include "NodeShift.h"
#include "PasteRules.h"
#include "Repaint.h"
#include "RulesFixture.h"
#include "StartUpVariables.h"
#include "TreeLines.h"
#include "TypingRules.h"

#include <functional>
#include <random>
#include <utility>
#include <vector>

/// Every editing command on random selections: the resulting text equals that of a plain model of the
/// command, undo by the counted steps restores page and selection, redo repeats the command.
using namespace vmk;
using namespace vmk::test;
using namespace Qt::StringLiterals;

namespace {

// ---------------------------------------------------------------- the commands

struct CommandCase
{
    const char* name;
    std::function<void(DisplayDocument&, QPoint)> run;
    std::function<QString(const Place&)> expected;
    /// Undo steps that are not noted in `UndoSteps`: at a selection, at a caret.
    int unnotedAtSelection = 0;
    int unnotedAtCaret = 0;
};

void PrintTo(const CommandCase& command, std::ostream* out)
{
    *out << command.name;
}

CommandCase Tagged(const char* name, InlineTag kind, const QString& tag)
{
    return {name, [kind](DisplayDocument& d, QPoint) { InsertInlineTag(d, kind); },
            [tag](const Place& p) { return Around(p, u'<' + tag + u'>', "</"_L1 + tag + u'>'); }};
}

CommandCase Pasted(const char* name, bool asHtml, const QString& html, const QStringList& lines)
{
    const bool inLine = !asHtml && !html.contains("<DIV"_L1);
    return {name,
            [asHtml, html](DisplayDocument& d, QPoint press) {
                asHtml ? PasteHtml(d, html, press) : PasteText(d, html, press);
            },
            [inLine, asHtml, lines](const Place& p) {
                return inLine ? With(p, lines.first()) : WithLines(p, lines, asHtml);
            }};
}

CommandCase FieldCase(const char* name, Field kind, const QString& atCaret)
{
    return {name, [kind](DisplayDocument& d, QPoint) { InsertField(d, kind); },
            [atCaret](const Place& p) { return p.caret() ? With(p, atCaret) : Unchanged(p); }, 1, 2};
}

const QString TwoHtmlLines = u"<DIV class=x>one <SPAN class=t>&lt;p&gt;</SPAN></DIV>\r\n<DIV>two 𝔻</DIV>"_s;
const QStringList TwoTextLines{u"one <p>"_s, u"two 𝔻"_s};

const CommandCase Commands[] = {
    {"Delete", [](DisplayDocument& d, QPoint) { DeleteSelection(d); }, Deleted},
    {"Cut", [](DisplayDocument& d, QPoint) { CopySelection(d, true); }, Deleted},
    {"Copy", [](DisplayDocument& d, QPoint) { CopySelection(d, false); }, Unchanged},
    {"CopyText", [](DisplayDocument& d, QPoint) { CopyAsText(d); }, Unchanged},
    {"Space", [](DisplayDocument& d, QPoint) { InsertSpace(d); }, WithSpace},
    {"Nbsp", [](DisplayDocument& d, QPoint) { InsertNbsp(d); },
     [](const Place& p) { return With(p, QString(QChar(Marker))); }},
    Tagged("Bold", InlineTag::Bold, u"strong"_s),
    Tagged("Italic", InlineTag::Italic, u"emphasis"_s),
    Tagged("Superscript", InlineTag::Superscript, u"sup"_s),
    Tagged("Subscript", InlineTag::Subscript, u"sub"_s),
    {"LowerCase", [](DisplayDocument& d, QPoint) { ChangeCase(d, LetterCase::Lower); },
     [](const Place& p) { return With(p, p.selected.toLower()); }},
    {"UpperCase", [](DisplayDocument& d, QPoint) { ChangeCase(d, LetterCase::Upper); },
     [](const Place& p) { return With(p, p.selected.toUpper()); }},
    {"ProperCase", [](DisplayDocument& d, QPoint) { ChangeCase(d, LetterCase::Proper); },
     [](const Place& p) { return With(p, ProperOf(p.selected)); }},
    {"RightShift", [](DisplayDocument& d, QPoint) { RightShift(d); }, Unchanged},
    {"LeftShift", [](DisplayDocument& d, QPoint) { LeftShift(d); }, Unchanged},
    {"Repaint",
     [](DisplayDocument& d, QPoint press) {
         RePaintSelection(d, {press, {}});
     },
     Unchanged},
    FieldCase("TextField", Field::Text, {}),
    FieldCase("TagField", Field::Tag, {}),
    FieldCase("AttributeField", Field::Attribute, u" "_s),
    FieldCase("ValueField", Field::Value, {}),
    Pasted("PasteWords", false, u"two  words &lt;b&gt;"_s, {u"two words <b>"_s}),
    Pasted("PasteLines", false, TwoHtmlLines, TwoTextLines),
    Pasted("PasteWordsAsHtml", true, u"two  words"_s, {u"two  words"_s}),
    Pasted("PasteLinesAsHtml", true, TwoHtmlLines, TwoTextLines),
};

class EveryCommand : public Rules, public testing::WithParamInterface<CommandCase>
{
protected:
    struct Snapshot
    {
        QByteArray page;
        Selection selection;
    };

    [[nodiscard]] Snapshot snapshot() const { return {document.savePage(), document.selection()}; }

    /// Runs the command at the selection, undoes and redoes it.
    void check()
    {
        const CommandCase& command = GetParam();
        const TextRange range = page::createRange(document);
        const QPoint press(range.offsetLeft(), range.offsetTop());
        const Place place = PlaceOf(document);
        const bool isField = command.unnotedAtCaret > 0;
        // The layout decides whether such a selection is visible; a separate test covers it.
        if (isField && place.lineBreaksOnly())
            return;
        const Snapshot before = snapshot();
        UndoSteps = 0;
        command.run(document, press);
        const Snapshot after = snapshot();

        // Outside a line, and for a field beside a painted run, nothing is inserted.
        const bool stepped = document.canUndo();
        ASSERT_TRUE(stepped || after.page == before.page);
        const bool mayMakeNothing = document.line(0).block == NoTag || isField;
        const QString text = TextLines(document).join(LineBreak);
        const QString wanted = !stepped && mayMakeNothing ? Unchanged(place) : command.expected(place);
        ASSERT_TRUE(text == wanted) << test::Difference(text.toStdString(), wanted.toStdString());
        if (!stepped)
            return;

        const int unnoted = place.caret() ? command.unnotedAtCaret : command.unnotedAtSelection;
        const int counted = unnoted > 0 ? unnoted : UndoSteps;
        takeBack(counted);
        ASSERT_TRUE(document.savePage() == before.page);
        ASSERT_EQ(document.selection(), before.selection);
        // There were no more undo steps than counted.
        ASSERT_FALSE(document.canUndo());
        for (int step = 0; step < counted; ++step)
            document.redo();
        ASSERT_TRUE(document.savePage() == after.page);
        ASSERT_FALSE(document.canRedo());
        takeBack(counted);
    }

    void checkAt(Position anchor, Position focus)
    {
        if (HasFatalFailure())
            return;
        document.setSelection(anchor, focus);
        const Selection at = document.selection();
        SCOPED_TRACE(testing::Message() << at.anchor.line << ':' << at.anchor.offset << " to "
                                        << at.focus.line << ':' << at.focus.offset);
        check();
    }

    /// The ends of the page, the complete page, and random ranges: carets, parts of a line, several lines.
    void checkPage(int rounds)
    {
        checkAt({}, {});
        checkAt(document.end(), document.end());
        checkAt({0, 0}, lineEnd(0));
        const int last = document.lineCount() - 1;
        checkAt({last, 0}, lineEnd(last));
        checkAt({}, document.end());
        for (int round = 0; round < rounds && !HasFatalFailure(); ++round) {
            const Position from = anyPlace(0, last);
            checkAt(from, from);
            checkAt(from, anyPlace(from.line, from.line));
            checkAt(from, anyPlace(std::max(from.line - 6, 0), std::min(from.line + 6, last)));
            const int to = std::min(from.line + below(5), last);
            checkAt({from.line, 0}, lineEnd(to));
        }
    }

    [[nodiscard]] Position lineEnd(int line) const { return {line, int(document.line(line).text.size())}; }
    Position anyPlace(int firstLine, int lastLine)
    {
        const int line = firstLine + below(lastLine - firstLine + 1);
        return document.valid({line, below(int(document.line(line).text.size()) + 1)});
    }
    int below(int count) { return int(random() % unsigned(count)); }

private:
    void takeBack(int steps)
    {
        for (int step = 0; step < steps; ++step)
            document.undo();
    }

    std::mt19937 random{20'260'101};
};

std::string NameOfCase(const testing::TestParamInfo<CommandCase>& info)
{
    return info.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Rules, EveryCommand, testing::ValuesIn(Commands), NameOfCase);

TEST_P(EveryCommand, IsUndoneAndRedoneInRealBooks)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    NamespaceErrorWarning = 0;
    InLineTags = DefaultInLineTags();
    for (const test::CorpusBook& book : test::CorpusBooks()) {
        SCOPED_TRACE(book.name);
        std::string page = book.bytes;
        ASSERT_TRUE(ConvertBookToDisplay(page, false));
        document.loadPage(QByteArray::fromStdString(page));
        ASSERT_GT(document.lineCount(), 50);
        checkPage(3);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(EveryCommand, IsUndoneAndRedoneInUnusualPages)
{
    const char* const pages[] = {
        "",
        "<DIV id=FirstDiv>only line</DIV>",
        "<DIV id=FirstDiv>first</DIV>\r<P>a paragraph</P><H2>a heading</H2>bare text<DIV>last</DIV>",
        "bare text alone",
        "<DIV id=FirstDiv></DIV><DIV></DIV><DIV style=\"MARGIN-LEFT: 5px\"></DIV>",
        "<DIV id=FirstDiv>𝔸𝔹 𝔻</DIV><DIV style=\"MARGIN-LEFT: 10px\">x𝔼𝔽y 𝔾</DIV>",
        "<DIV style=\"MARGIN-LEFT: 15px\"><SPAN class=t>&lt;p<FONT class=n> id=</FONT><FONT "
        "class=v>\"a\"</FONT>"
        "&gt;</SPAN>text <SPAN class=c>&lt;!-- note --&gt;</SPAN> &amp; more<SPAN "
        "class=t>&lt;/p&gt;</SPAN></DIV>"
        "<DIV>a <B>bold</B> <I>word</I></DIV>",
        "<DIV style=\"MARGIN-LEFT: 3px\">near the edge</DIV><DIV style=\"MARGIN-LEFT: 5px\">a step in</DIV>",
    };
    for (const char* page : pages) {
        SCOPED_TRACE(page);
        show(page);
        checkPage(40);
        if (HasFatalFailure())
            return;
    }
}
