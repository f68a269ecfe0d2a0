// Keys, input methods and the clipboard.

#include "Desktop.h"
#include "TextRange.h"
#include "ViewFixture.h"

#include <QInputMethodEvent>
#include <QInputMethodQueryEvent>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

const QByteArray ThreeLines
    = "<DIV id=FirstDiv><SPAN class=t>&lt;p&gt;</SPAN>one two<SPAN class=t>&lt;/p&gt;</SPAN></DIV>"
      "<DIV style=\"MARGIN-LEFT: 10px\">second line</DIV><DIV>third</DIV>";

const QByteArray LongParagraph
    = "<DIV>Here is a paragraph of so many words that it takes up a good number of rows in the "
      "window of this test, so that the caret can go up and down in it.</DIV>";

class ViewKeyboard : public ViewTest
{
};

// ---------------------------------------------------------------- the caret

TEST_F(ViewKeyboard, ArrowKeysVisitEveryPositionOnceInEachDirection)
{
    show(ThreeLines + LongParagraph);
    caretTo(0, 0);
    const std::vector<Position> all = places();
    for (const Position place : all) {
        ASSERT_EQ(caret(), place);
        key(Qt::Key_Right);
    }
    EXPECT_EQ(caret(), all.back());
    for (size_t i = all.size(); i-- > 0;) {
        ASSERT_EQ(caret(), all[i]);
        key(Qt::Key_Left);
    }
    EXPECT_EQ(caret(), all.front());
}

TEST_F(ViewKeyboard, ACharacterOutsideTheBasicPlaneIsOneStep)
{
    show("<DIV>a\xf0\x9f\x98\x80"
         "b</DIV>");
    caretTo(0, 1);
    key(Qt::Key_Right);
    EXPECT_EQ(caret(), (Position{0, 3}));
    key(Qt::Key_Left);
    EXPECT_EQ(caret(), (Position{0, 1}));
}

TEST_F(ViewKeyboard, UpAndDownKeepTheirColumnOverShortRows)
{
    show("<DIV>a long first line</DIV><DIV>ab</DIV><DIV></DIV><DIV>a long fourth line</DIV>");
    caretTo(0, 10);
    const int x = view.caretRect().left();
    key(Qt::Key_Down);
    EXPECT_EQ(caret(), (Position{1, 2}));
    key(Qt::Key_Down);
    EXPECT_EQ(caret(), (Position{2, 0}));
    key(Qt::Key_Down);
    EXPECT_EQ(caret().line, 3);
    EXPECT_NEAR(view.caretRect().left(), x, 6);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_EQ(caret(), (Position{0, 10}));
}

TEST_F(ViewKeyboard, AnyOtherMoveOfTheCaretForgetsTheColumn)
{
    const auto columnAfter = [this](auto move) {
        show("<DIV>a long first line</DIV><DIV>ab</DIV><DIV>a long third line</DIV>");
        caretTo(0, 12);
        key(Qt::Key_Down);
        EXPECT_EQ(caret(), (Position{1, 2}));
        move();
        key(Qt::Key_Down);
        EXPECT_EQ(caret().line, 2);
        return caret().offset;
    };
    EXPECT_GT(columnAfter([] {}), 8);
    // Moves of the program: its keys Left and Right, a non-breaking space, a paste.
    EXPECT_LE(columnAfter([this] { caretTo(1, 1); }), 2);
    EXPECT_LE(columnAfter([this] { document().typeText(QStringLiteral("x")); }), 4);
    EXPECT_LE(columnAfter([this] { view.insertText(QStringLiteral("x")); }), 4);
    EXPECT_LE(columnAfter([this] {
                  TextRange range(document(), {1, 0}, {1, 1});
                  range.setText(QStringLiteral("b"));
                  range.select();
              }),
              2);
}

TEST_F(ViewKeyboard, UpAndDownVisitEveryRowOfAParagraph)
{
    show(LongParagraph);
    caretTo(0, 4);
    std::vector<int> tops{view.caretRect().top()};
    for (;;) {
        const Position before = caret();
        key(Qt::Key_Down);
        if (caret() == before)
            break;
        tops.push_back(view.caretRect().top());
        ASSERT_LT(tops.size(), 50U);
    }
    EXPECT_EQ(int(tops.size()), view.rowNumber(document().end()));
    for (size_t i = tops.size() - 1; i > 0; --i) {
        EXPECT_EQ(view.caretRect().top(), tops[i]);
        key(Qt::Key_Up);
    }
    EXPECT_EQ(caret(), (Position{0, 4}));
}

TEST_F(ViewKeyboard, HomeAndEndMoveToTheEndsOfTheRow)
{
    show(LongParagraph);
    caretTo(0, 60);
    const int row = view.caretRect().top();
    key(Qt::Key_Home);
    EXPECT_EQ(view.caretRect().top(), row);
    EXPECT_EQ(view.caretRect().left(), 5);
    key(Qt::Key_End);
    EXPECT_EQ(view.caretRect().top(), row);
    EXPECT_GT(view.caretRect().left(), Width / 2);
    key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(caret(), document().end());
    key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(caret(), Position{});
}

TEST_F(ViewKeyboard, PageKeysMoveByAScreenAndReachTheEnds)
{
    show(LongParagraph.repeated(40));
    caretTo(0, 0);
    int pages = 0;
    while (caret().line < 39 && pages < 100) {
        const int before = view.scrollTop();
        key(Qt::Key_PageDown);
        EXPECT_GE(view.scrollTop(), before);
        EXPECT_TRUE(view.viewport()->rect().intersects(view.caretRect().adjusted(0, 0, 1, 0)));
        ++pages;
    }
    EXPECT_LT(pages, 100);
    for (int i = 0; i < pages + 2; ++i)
        key(Qt::Key_PageUp);
    EXPECT_EQ(view.scrollTop(), 0);
    EXPECT_EQ(view.rowNumber(caret()), 1);
}

TEST_F(ViewKeyboard, CtrlMovesByWords)
{
    show("<DIV>one, two three</DIV><DIV>four</DIV>");
    caretTo(0, 0);
    std::vector<int> stops;
    for (int i = 0; i < 4; ++i) {
        key(Qt::Key_Right, Qt::ControlModifier);
        stops.push_back(caret().offset);
    }
    EXPECT_EQ(stops, (std::vector<int>{3, 5, 9, 14}));
    key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(caret(), (Position{1, 0}));
    key(Qt::Key_Left, Qt::ControlModifier);
    key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(caret(), (Position{0, 9}));
}

TEST_F(ViewKeyboard, ShiftExtendsTheSelection)
{
    show(ThreeLines);
    caretTo(1, 3);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(document().selection(), (Selection{{1, 3}, {1, 5}}));
    key(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(document().selection(), (Selection{{1, 3}, {1, 0}}));
    key(Qt::Key_Right);
    EXPECT_EQ(document().selection(), (Selection{{1, 3}, {1, 3}}));
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(document().selection(), (Selection{{0, 0}, {2, 5}}));
}

// ---------------------------------------------------------------- editing

TEST_F(ViewKeyboard, TypedTextJoinsTheSpanAtTheCaret)
{
    show(ThreeLines);
    caretTo(0, 2);
    type("xy");
    EXPECT_EQ(line(0), u"<pxy>one two</p>"_s);
    EXPECT_EQ(view.runAt({0, 3}).look.color, QColor(0, 0, 128));
    EXPECT_EQ(view.runAt({0, 6}).look.color, QColor(0, 0, 0));
}

TEST_F(ViewKeyboard, TypedTextReplacesTheSelection)
{
    show(ThreeLines);
    select({0, 3}, {1, 7});
    type("Q");
    EXPECT_EQ(text(), u"<p>Qline|third"_s);
}

TEST_F(ViewKeyboard, EnterSplitsTheLineAndBackspaceJoinsIt)
{
    show(ThreeLines);
    caretTo(1, 6);
    key(Qt::Key_Return);
    EXPECT_EQ(text(), u"<p>one two</p>|second| line|third"_s);
    EXPECT_EQ(document().line(2).block, document().line(1).block);
    EXPECT_EQ(caret(), (Position{2, 0}));
    key(Qt::Key_Backspace);
    EXPECT_EQ(text(), u"<p>one two</p>|second line|third"_s);
    EXPECT_EQ(caret(), (Position{1, 6}));
}

TEST_F(ViewKeyboard, DeleteRemovesTheNextCharacterOrLineBreak)
{
    show(ThreeLines);
    caretTo(1, 10);
    key(Qt::Key_Delete);
    EXPECT_EQ(line(1), u"second lin"_s);
    key(Qt::Key_Delete);
    EXPECT_EQ(line(1), u"second linthird"_s);
    key(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(line(1), u"second third"_s);
    key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(line(1), u"second "_s);
}

TEST_F(ViewKeyboard, UndoAndRedoRestoreEachState)
{
    show(ThreeLines);
    const QString before = text();
    caretTo(2, 5);
    type("abc");
    key(Qt::Key_Return);
    type("d");
    const QString after = text();
    ASSERT_EQ(after, u"<p>one two</p>|second line|thirdabc|d"_s);
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(text(), before);
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(text(), after);
}

TEST_F(ViewKeyboard, TypingAtTheEndOfALongPageScrollsTheCaretIntoView)
{
    show(LongParagraph.repeated(100));
    document().setSelection(document().end(), document().end());
    view.scroll(0, 0);
    type("!");
    EXPECT_TRUE(view.viewport()->rect().contains(view.caretRect()));
    EXPECT_TRUE(line(99).endsWith(u"!"_s));
}

TEST_F(ViewKeyboard, AllTextCanBeDeletedAndTypedAgain)
{
    show(ThreeLines);
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    EXPECT_EQ(text(), QString());
    type("new");
    key(Qt::Key_Return);
    type("text");
    EXPECT_EQ(text(), u"new|text"_s);
}

TEST_F(ViewKeyboard, KeysWithAltAndControlCharactersTypeNothing)
{
    show(ThreeLines);
    const QString before = text();
    key(Qt::Key_X, Qt::AltModifier);
    key(Qt::Key_K, Qt::ControlModifier);
    key(Qt::Key_Escape);
    key(Qt::Key_F5);
    EXPECT_EQ(text(), before);
}

// ---------------------------------------------------------------- events

TEST_F(ViewKeyboard, AKeyEventHasItsCodeAndModifiers)
{
    show(ThreeLines);
    std::vector<DisplayEvent> seen;
    view.events.onkeydown = [&](DisplayEvent& event) {
        // The modifier keys raise events too.
        if (event.keyCode > 18)
            seen.push_back(event);
    };
    key(Qt::Key_Left, Qt::ShiftModifier);
    key(Qt::Key_V, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].type, "keydown"_L1);
    EXPECT_EQ(seen[0].keyCode, 37);
    EXPECT_TRUE(seen[0].shiftKey);
    EXPECT_FALSE(seen[0].ctrlKey);
    EXPECT_EQ(seen[1].keyCode, 86);
    EXPECT_TRUE(seen[1].ctrlKey);
    EXPECT_TRUE(seen[1].altKey);
}

TEST_F(ViewKeyboard, ACancelledKeyDoesNothing)
{
    show(ThreeLines);
    const QString before = text();
    caretTo(1, 3);
    view.events.onkeydown = [](DisplayEvent& event) { event.returnValue = false; };
    type("abc");
    key(Qt::Key_Return);
    key(Qt::Key_Backspace);
    key(Qt::Key_Right);
    EXPECT_EQ(text(), before);
    EXPECT_EQ(caret(), (Position{1, 3}));
}

TEST_F(ViewKeyboard, KeyEventsPrecedeShortcutsButMenusKeepTheirLetters)
{
    show(ThreeLines);
    const auto taken = [this](int key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
        event.ignore();
        QApplication::sendEvent(&view, &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(taken(Qt::Key_Z, Qt::ControlModifier));
    EXPECT_TRUE(taken(Qt::Key_F3, Qt::NoModifier));
    EXPECT_FALSE(taken(Qt::Key_F, Qt::AltModifier));
}

// ---------------------------------------------------------------- read-only pages

TEST_F(ViewKeyboard, AReadOnlyPageScrollsByKeyAndCannotBeChanged)
{
    show(LongParagraph.repeated(40));
    view.setDesignMode(u"Off"_s);
    const QString before = text();
    type("x");
    key(Qt::Key_Return);
    key(Qt::Key_Delete);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(text(), before);
    EXPECT_EQ(caret(), Position{});
    key(Qt::Key_PageDown);
    EXPECT_GT(view.scrollTop(), Height / 2);
    key(Qt::Key_End);
    EXPECT_EQ(view.scrollTop(), view.scrollHeight() - view.clientHeight());
    key(Qt::Key_Home);
    EXPECT_EQ(view.scrollTop(), 0);
    // Copying works.
    QString copied;
    const SeamGuard guard(SetClipboardTextSeam(), [&](const QString& given) { copied = given; });
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(copied.startsWith(u"Here is a paragraph"_s));
}

// ---------------------------------------------------------------- clipboard

TEST_F(ViewKeyboard, CutCopyAndPasteUseTheClipboard)
{
    show(ThreeLines);
    QString clipboard;
    const SeamGuard setter(SetClipboardTextSeam(), [&](const QString& given) { clipboard = given; });
    const SeamGuard getter(ClipboardTextSeam(), [&] { return clipboard; });
    select({0, 3}, {1, 6});
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard, u"one two</p>\r\nsecond"_s);
    key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(text(), u"<p> line|third"_s);
    key(Qt::Key_End, Qt::ControlModifier);
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(text(), u"<p> line|thirdone two</p>|second"_s);
    // One paste is one step.
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(text(), u"<p> line|third"_s);
}

// ---------------------------------------------------------------- input methods

void compose(DisplayView& view, const QString& preedit, int cursor)
{
    QInputMethodEvent event(preedit, {{QInputMethodEvent::Cursor, cursor, 1, {}}});
    QApplication::sendEvent(&view, &event);
}

void commit(DisplayView& view, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(&view, &event);
}

TEST_F(ViewKeyboard, ComposedTextIsShownBeforeItIsInTheDocument)
{
    show(ThreeLines);
    const QString before = text();
    caretTo(1, 6);
    const int after = view.clientRects({1, 7}, {1, 7}).front().left();
    compose(view, u"nihao"_s, 2);
    EXPECT_EQ(text(), before);
    EXPECT_FALSE(document().canUndo());
    // The text after it moves, and the caret of the input method is inside the composed text.
    const int pushed = view.clientRects({1, 7}, {1, 7}).front().left();
    EXPECT_GT(pushed, after + 20);
    QInputMethodQueryEvent query(Qt::ImCursorRectangle);
    QApplication::sendEvent(&view, &query);
    const QRect cursor = query.value(Qt::ImCursorRectangle).toRect();
    EXPECT_GT(cursor.left(), view.clientRects({1, 6}, {1, 6}).front().left());
    EXPECT_LT(cursor.left(), pushed);

    commit(view, u"你好"_s);
    EXPECT_EQ(line(1), u"second你好 line"_s);
    EXPECT_EQ(caret(), (Position{1, 8}));
}

TEST_F(ViewKeyboard, ACancelledCompositionChangesNothing)
{
    show(ThreeLines);
    const QString before = text();
    const QRect rect = view.clientRects({1, 7}, {1, 7}).front();
    caretTo(1, 6);
    compose(view, u"abc"_s, 3);
    compose(view, QString(), 0);
    EXPECT_EQ(text(), before);
    EXPECT_EQ(view.clientRects({1, 7}, {1, 7}).front(), rect);
}

TEST_F(ViewKeyboard, AComposedTextReplacesTheSelection)
{
    show(ThreeLines);
    select({1, 0}, {1, 6});
    compose(view, u"k"_s, 1);
    commit(view, u"か"_s);
    EXPECT_EQ(line(1), u"か line"_s);
}

TEST_F(ViewKeyboard, ADeadKeyTypesNothingUntilItsLetterFollows)
{
    show(ThreeLines);
    caretTo(2, 5);
    const QString before = text();
    QKeyEvent dead(QEvent::KeyPress, Qt::Key_Dead_Acute, Qt::NoModifier);
    QApplication::sendEvent(&view, &dead);
    EXPECT_EQ(text(), before);
    commit(view, u"é"_s);
    EXPECT_EQ(line(2), u"thirdé"_s);
}

TEST_F(ViewKeyboard, AnInputMethodCanQueryTheTextAroundTheCaret)
{
    show(ThreeLines);
    select({1, 2}, {1, 6});
    QInputMethodQueryEvent query(Qt::ImQueryAll);
    QApplication::sendEvent(&view, &query);
    EXPECT_TRUE(query.value(Qt::ImEnabled).toBool());
    EXPECT_EQ(query.value(Qt::ImSurroundingText).toString(), u"second line"_s);
    EXPECT_EQ(query.value(Qt::ImCursorPosition).toInt(), 6);
    EXPECT_EQ(query.value(Qt::ImAnchorPosition).toInt(), 2);
    EXPECT_EQ(query.value(Qt::ImCurrentSelection).toString(), u"cond"_s);
    // It may replace the text around the caret.
    QInputMethodEvent event;
    event.setCommitString(u"S"_s, -6, 1);
    QApplication::sendEvent(&view, &event);
    EXPECT_EQ(line(1), u"Second line"_s);
}

} // namespace
} // namespace vmk
