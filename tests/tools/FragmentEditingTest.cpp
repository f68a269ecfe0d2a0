#include "FragmentEditing.h"

#include "BookVariables.h"
#include "DisplayPage.h"

#include <gtest/gtest.h>

#include <random>

/// The fragment editor without its window: the display and the editor as two documents.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class FragmentEditing : public testing::Test
{
protected:
    FragmentEditing()
    {
        qputenv("VELLUMARK_CODEPAGE", "1251");
        marker = LineEndMarker();
        display.loadPage("<HTML><BODY><DIV id=FirstDiv><SPAN class=t>&lt;p&gt;</SPAN>one&nbsp;two</DIV>"
                         "<DIV>three</DIV><DIV>four</DIV><DIV>five</DIV></BODY></HTML>");
        editor.loadPage(BlankFragmentPage());
        BookUnchanged = true;
        UndoSteps = 0;
    }
    ~FragmentEditing() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    Fragment Take(Position from, Position to, bool wholeLines)
    {
        display.setSelection(from, to);
        Fragment fragment = TakeFragment(display, wholeLines);
        ShowFragment(editor, fragment.source);
        return fragment;
    }
    [[nodiscard]] static QStringList LinesOf(const DisplayDocument& document)
    {
        QStringList lines;
        for (int i = 0; i < document.lineCount(); ++i)
            lines.append(document.line(i).text);
        return lines;
    }
    void Apply(Fragment& fragment) { ApplyFragment(display, fragment, FragmentText(editor)); }
    /// Replaces text in the editor, as the user's typing does.
    void Edit(const QString& what, const QString& by)
    {
        TextRange range = page::createTextRange(editor);
        ASSERT_TRUE(range.findText(what)) << what.toStdString();
        range.select();
        editor.typeText(by);
    }
    void Undo()
    {
        for (int i = 0; i < UndoSteps; ++i)
            display.undo();
    }

    DisplayDocument display;
    DisplayDocument editor;
    QString marker;
};

const QStringList Before = {u"<p>one\u00A0two"_s, u"three"_s, u"four"_s, u"five"_s};

} // namespace

TEST_F(FragmentEditing, TheMarkerIsCharacter128OfTheCodePage)
{
    EXPECT_EQ(LineEndMarker(), QChar(u'\u0402'));
    qputenv("VELLUMARK_CODEPAGE", "1252");
    EXPECT_EQ(LineEndMarker(), QChar(u'\u20AC'));
}

TEST_F(FragmentEditing, ACaretReturnsAnEmptyFragment)
{
    const Fragment fragment = Take({1, 2}, {1, 2}, true);
    EXPECT_EQ(fragment.source, QString());
    EXPECT_EQ(fragment.firstNode, -1);
    EXPECT_EQ(FragmentText(editor), QString());
}

TEST_F(FragmentEditing, TheSourceIsTextWithAMarkerAtEachLinesEnd)
{
    Take({0, 0}, {1, 5}, false);
    EXPECT_EQ(LinesOf(editor),
              (QStringList{u"<DIV id=FirstDiv><SPAN class=t>&lt;p&gt;</SPAN>one&nbsp;two</DIV>"_s + marker,
                           u"<DIV>three</DIV>"_s}));
    EXPECT_FALSE(FragmentText(editor).contains(marker));
    EXPECT_EQ(editor.selection().focus, Position());
}

TEST_F(FragmentEditing, WithoutValidationOnlyTheSelectionIsReplaced)
{
    Fragment fragment = Take({1, 1}, {1, 4}, false);
    EXPECT_EQ(fragment.source, u"hre"_s);
    EXPECT_EQ(fragment.firstNode, -1);
    Edit(u"hre"_s, u"<B>x</B>"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display)[1], u"txe"_s);
    EXPECT_EQ(page::item(display, 2).outerHTML(), u"<DIV>t<B>x</B>e</DIV>"_s);
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    Undo();
    EXPECT_EQ(LinesOf(display), Before);
}

TEST_F(FragmentEditing, TextWithoutMarkUpArrivesInsideTheSpansOfTheLine)
{
    Fragment fragment = Take({0, 1}, {0, 2}, false);
    Edit(u"p"_s, u"cite"_s);
    Apply(fragment);
    EXPECT_EQ(page::item(display, 1).outerHTML(),
              u"<DIV id=FirstDiv><SPAN class=t>&lt;cite&gt;</SPAN>one&nbsp;two</DIV>"_s);
}

TEST_F(FragmentEditing, ValidationGrowsTheSelectionToWholeLines)
{
    Fragment fragment = Take({0, 3}, {2, 1}, true);
    EXPECT_EQ(fragment.firstNode, 1);
    EXPECT_EQ(fragment.lastNode, 3);
    EXPECT_EQ(display.selection().start(), Position());
    EXPECT_EQ(display.selection().end(), (Position{2, 4}));
    Edit(u"three"_s, u"3"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), (QStringList{Before[0], u"3"_s, u"four"_s, u"five"_s}));
    EXPECT_EQ(UndoSteps, 2);
    EXPECT_EQ(fragment.firstNode, -1);
    EXPECT_EQ(fragment.lastNode, -1);
    Undo();
    EXPECT_EQ(LinesOf(display), Before);
}

TEST_F(FragmentEditing, OneValidatedLineIsReplacedAsALine)
{
    Fragment fragment = Take({1, 1}, {1, 2}, true);
    EXPECT_EQ(fragment.source, u"<DIV>three</DIV>"_s);
    Edit(u"<DIV>"_s, u"<DIV style=\"MARGIN-LEFT: 5px\">"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), Before);
    EXPECT_EQ(page::item(display, 2).marginLeft(), 5);
    EXPECT_EQ(UndoSteps, 2);
    Undo();
    EXPECT_EQ(page::item(display, 2).marginLeft(), 0);
}

TEST_F(FragmentEditing, TheLastLinesAndAllLinesCanBeReplaced)
{
    Fragment fragment = Take({2, 0}, {3, 4}, true);
    Edit(u"five"_s, u"5"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), (QStringList{Before[0], u"three"_s, u"four"_s, u"5"_s}));
    fragment = Take({3, 0}, {3, 1}, true);
    Edit(u"5"_s, u"V"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display)[3], u"V"_s);
    fragment = Take({0, 0}, {3, 1}, true);
    Edit(u"four"_s, u"4"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), (QStringList{Before[0], u"three"_s, u"4"_s, u"V"_s}));
}

TEST_F(FragmentEditing, AnUnchangedFragmentChangesNothing)
{
    for (const bool wholeLines : {false, true}) {
        for (const auto& [from, to] : {std::pair<Position, Position>{{1, 1}, {1, 3}},
                                       {{0, 2}, {2, 3}},
                                       {{0, 0}, {3, 4}},
                                       {{0, 4}, {0, 8}}}) {
            Fragment fragment = Take(from, to, wholeLines);
            Apply(fragment);
            EXPECT_TRUE(BookUnchanged);
            EXPECT_FALSE(display.canUndo());
            EXPECT_EQ(fragment.firstNode, -1);
        }
    }
    Fragment empty = Take({1, 1}, {1, 1}, true);
    Apply(empty);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(FragmentEditing, ASecondApplyReplacesTheSelection)
{
    Fragment fragment = Take({1, 0}, {1, 5}, true);
    Edit(u"three"_s, u"3"_s);
    Apply(fragment);
    const QStringList once = LinesOf(display);
    Apply(fragment);
    EXPECT_EQ(UndoSteps, 1);
    Undo();
    EXPECT_EQ(LinesOf(display), once);
}

TEST_F(FragmentEditing, AnEmptiedFragmentRemovesItsLinesInOneStep)
{
    Fragment fragment = Take({1, 0}, {2, 4}, true);
    ShowFragment(editor, QString());
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), (QStringList{Before[0], u"five"_s}));
    EXPECT_EQ(UndoSteps, 1);
    Undo();
    EXPECT_EQ(LinesOf(display), Before);
}

TEST_F(FragmentEditing, LinesThatAreNoLongerSelectedAreNotRemoved)
{
    Fragment fragment = Take({1, 0}, {2, 4}, true);
    Edit(u"three"_s, u"3"_s);
    display.setSelection({3, 4}, {3, 4});
    Apply(fragment);
    for (const QString& line : Before)
        EXPECT_TRUE(page::innerText(display).contains(line)) << line.toStdString();
}

TEST_F(FragmentEditing, UndoInTheEditorGoesBackToTheSourceAndNotToABlankPage)
{
    Fragment fragment = Take({1, 0}, {2, 4}, true);
    const QString source = FragmentText(editor);
    Edit(u"three"_s, u"3"_s);
    while (editor.undo()) { }
    EXPECT_EQ(FragmentText(editor), source);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), Before);
}

// ---------------------------------------------------------------- the marker

TEST_F(FragmentEditing, AMarkerOfAJoinedLineIsNotBookText)
{
    Take({1, 0}, {2, 4}, true);
    editor.setSelection({0, 17}, {0, 17});
    editor.deleteForward();
    EXPECT_EQ(editor.lineCount(), 1);
    EXPECT_EQ(FragmentText(editor), u"<DIV>three</DIV><DIV>four</DIV>"_s);
}

TEST_F(FragmentEditing, TheSameCharacterInTheBookAndFromTheKeyboardIsKept)
{
    display.loadPage("<HTML><BODY><DIV>\xD0\x82or\xD1\x92\x65 \xD0\x82</DIV><DIV>two</DIV></BODY></HTML>");
    Fragment fragment = Take({0, 0}, {1, 3}, true);
    PaintFragment(editor);
    Edit(u"two"_s, u"t\u0402wo"_s);
    Apply(fragment);
    EXPECT_EQ(LinesOf(display), (QStringList{u"\u0402or\u0452e \u0402"_s, u"t\u0402wo"_s}));
}

// ---------------------------------------------------------------- colours

namespace {

/// The colours by the plain steps: a search for each bracket and one for each marker.
void PaintPlainly(DisplayDocument& editor)
{
    TextRange range = page::createTextRange(editor);
    while (range.findText(u"<"_s)) {
        TextRange tag = range;
        if (!range.findText(u">"_s))
            break;
        tag.setEndPoint(u"EndToEnd", range);
        tag.execCommand(u"ForeColor", false, u"#0000FF"_s);
        range.setEndPoint(u"StartToEnd", tag);
    }
    range = page::createTextRange(editor);
    while (range.findText(LineEndMarker())) {
        TextRange hit = range;
        range.execCommand(u"ForeColor", false, u"#808080"_s);
        range.setEndPoint(u"StartToEnd", hit);
        range.moveEnd(u"textedit");
        if (range.isEmpty())
            break;
    }
}

/// The innermost colour of each character.
QStringList ColorsOf(const DisplayDocument& document)
{
    QStringList colors;
    for (int i = 0; i < document.lineCount(); ++i) {
        const Line& line = document.line(i);
        QStringList open = {u"-"_s};
        size_t mark = 0;
        for (int at = 0; at <= line.text.size(); ++at) {
            for (; mark < line.marks.size() && line.marks[mark].pos == at; ++mark) {
                const Tag& tag = document.tags()[line.marks[mark].tag];
                const QString color = tag.value(u"color");
                if (!line.marks[mark].open)
                    open.removeLast();
                else
                    open.append(color.isNull() ? open.last() : color);
            }
            if (at < line.text.size())
                colors.append(open.last());
        }
        colors.append(u"/"_s);
    }
    return colors;
}

} // namespace

TEST_F(FragmentEditing, ColoursAreThoseOfTheSearchForEachBracket)
{
    std::mt19937 random(3);
    const QStringList pieces
        = {u"<"_s, u">"_s, u"a"_s, u"\r\n"_s, u"<DIV>"_s, u"</DIV>"_s, u"\u0402"_s, u"&lt;"_s};
    for (int round = 0; round < 400; ++round) {
        QString source;
        for (size_t i = random() % 14; i > 0; --i)
            source += pieces[qsizetype(random() % size_t(pieces.size()))];
        DisplayDocument other;
        ShowFragment(editor, source);
        ShowFragment(other, source);
        PaintFragment(editor);
        PaintPlainly(other);
        ASSERT_EQ(ColorsOf(editor), ColorsOf(other)) << source.toStdString();
        ASSERT_EQ(FragmentText(editor), source);
    }
}

TEST_F(FragmentEditing, ColouringIsOneStepAndCanBeRepeated)
{
    Take({0, 0}, {3, 4}, true);
    const QString text = FragmentText(editor);
    PaintFragment(editor);
    const QStringList colors = ColorsOf(editor);
    PaintFragment(editor);
    EXPECT_EQ(ColorsOf(editor), colors);
    EXPECT_EQ(FragmentText(editor), text);
    editor.undo();
    editor.undo();
    EXPECT_FALSE(ColorsOf(editor).contains(u"#0000FF"_s));
    EXPECT_EQ(FragmentText(editor), text);
}

// ---------------------------------------------------------------- character codes

TEST_F(FragmentEditing, CodesOfTheCharacterAtTheCaret)
{
    ShowFragment(editor, u"я\u00A0\u007F\uFFFDA\r\n"_s);
    const auto codesAt = [this](Position at) {
        editor.setSelection(at, at);
        return CodesInFragment(editor);
    };
    EXPECT_EQ(codesAt({0, 0}), (ShownCodes{u"255"_s, u"1103"_s}));
    EXPECT_EQ(codesAt({0, 1}), (ShownCodes{u"160 (nbsp)"_s, u"160 (nbsp)"_s}));
    EXPECT_EQ(codesAt({0, 2}), (ShownCodes{u"160 (nbsp)"_s, u"160 (nbsp)"_s}));
    EXPECT_EQ(codesAt({0, 3}), (ShownCodes{u"63"_s, u"-3"_s}));
    EXPECT_EQ(codesAt({0, 4}), (ShownCodes{u"65"_s, u"65"_s}));
    EXPECT_EQ(codesAt({0, 5}), (ShownCodes{u"line end"_s, u"line end"_s}));
    EXPECT_EQ(codesAt({1, 0}), ShownCodes());
}

// ---------------------------------------------------------------- no text is lost

TEST_F(FragmentEditing, AnyTypedTextReachesTheDisplay)
{
    std::mt19937 random(11);
    const QStringList pieces = {u"word"_s,
                                u" "_s,
                                u"<"_s,
                                u">"_s,
                                u"<DIV>"_s,
                                u"</DIV>"_s,
                                u"<SPAN class=t>"_s,
                                u"</SPAN>"_s,
                                u"<table>"_s,
                                u"<td>"_s,
                                u"<P>"_s,
                                u"<BR>"_s,
                                u"&"_s,
                                u"&lt;p&gt;"_s,
                                u"\r\n"_s,
                                u"\""_s,
                                u"</BODY>"_s,
                                u"<UL><LI>"_s,
                                u"<A href="_s};
    for (int round = 0; round < 1500; ++round) {
        Fragment fragment = Take({1, 0}, {round % 2 ? 1 : 2, 4}, round % 3 != 0);
        QString source;
        for (size_t i = random() % 12; i > 0; --i)
            source += pieces[qsizetype(random() % size_t(pieces.size()))];
        // A bracket that nothing closes must not take the word with it.
        source = u"first"_s + source + u" last"_s;
        ApplyFragment(display, fragment, source);
        const QString text = page::innerText(display);
        ASSERT_TRUE(text.contains(u"first"_s)) << source.toStdString();
        ASSERT_TRUE(text.contains(Before[0])) << source.toStdString();
        ASSERT_TRUE(text.contains(u"five"_s)) << source.toStdString();
        while (display.canUndo())
            display.undo();
        ASSERT_EQ(LinesOf(display), Before);
    }
}

TEST_F(FragmentEditing, AnOpenBracketIsText)
{
    Fragment fragment = Take({1, 0}, {1, 5}, false);
    ApplyFragment(display, fragment, u"a < b and <unfinished"_s);
    EXPECT_EQ(LinesOf(display)[1], u"a < b and <unfinished"_s);
}

// ---------------------------------------------------------------- the page for reading

TEST_F(FragmentEditing, ThePaintedPageShowsTheSourceInColours)
{
    const QString source = u"<DIV id=x>a&nbsp;b</DIV>\r\n<P>"_s;
    const QByteArray page = PaintedSourcePage(source);
    EXPECT_TRUE(page.contains("<FONT color=#0000FF>&lt;DIV<FONT color=#B22222> id=</FONT>x&gt;</FONT>"))
        << page.constData();
    EXPECT_TRUE(page.contains("<FONT color=#9370DB><SPAN>&</SPAN>nbsp;</FONT>"));
    EXPECT_TRUE(page.contains(("<FONT color=#808080>"_L1 + LineEndMarker() + "</FONT><BR>"_L1).toUtf8()));
    EXPECT_TRUE(page.startsWith("<HTML><meta content=\"text/html; charset=utf-8\""));
    EXPECT_TRUE(page.endsWith("</DIV></BODY></HTML>"));
    DisplayDocument document;
    document.loadPage(page);
    EXPECT_EQ(LinesOf(document).join(u"\r\n"_s), u"<DIV id=x>a&nbsp;b</DIV>"_s + marker + u"\r\n<P>"_s);
}

} // namespace vmk
