#include "SettingsVariables.h"
#include "WindowTest.h"

#include <functional>
#include <vector>

/// Every editing command from every path to it: menu, context menu, toolbar, keys.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

struct Keys
{
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

class Commands : public WindowTest
{
protected:
    struct Way
    {
        const char* name;
        std::vector<const char*> entries;
        std::vector<Keys> keys;
        const char* button;
        std::function<void()> prepare;
        std::function<bool()> done;
    };

    /// Uses each path once; the book is restored before each.
    void check(const Way& way)
    {
        const auto reached = [&](const std::function<void()>& go, const QString& how) {
            while (Document().canUndo())
                Document().undo();
            SetClipboardText({});
            way.prepare();
            go();
            EXPECT_TRUE(way.done()) << way.name << " by " << how.toStdString() << ": "
                                    << LineText(line()).toStdString();
        };
        for (const char* name : way.entries) {
            QAction* entry = form->Entry(name);
            ASSERT_NE(entry, nullptr) << name;
            entry->setVisible(true);
            reached([&] { entry->trigger(); }, QLatin1StringView(name));
        }
        for (const Keys& keys : way.keys)
            reached([&] { Key(keys.key, keys.modifiers); },
                    QKeySequence(keys.modifiers | keys.key).toString());
        if (way.button)
            reached([&] { form->ToolbarAction(QLatin1StringView(way.button))->trigger(); }, u"button"_s);
    }

    /// The line that the commands work on.
    int line() { return FindLine(u"First"_s); }
    void selectWord()
    {
        const Position at = PlaceOf(u"words"_s);
        Document().setSelection(at, {at.line, at.offset + 5});
    }
    void caretAtWord() { PutCaret(PlaceOf(u"words"_s)); }
    std::function<bool()> text(const QString& expected)
    {
        return [this, expected] { return LineText(line()) == expected; };
    }
    std::function<bool()> html(const QString& expected)
    {
        return [this, expected] { return page::item(Document(), line() + 1).outerHTML().contains(expected); };
    }
    int margin() { return page::item(Document(), line() + 1).marginLeft(); }
};

constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Shift = Qt::ShiftModifier;

} // namespace

TEST_F(Commands, DeleteAndClipboardCommandsWorkFromEveryPath)
{
    OpenBook();
    const auto select = [this] { selectWord(); };
    const auto copied = [] { return ClipboardText() == u"words"_s; };
    const auto gone = text(u"<p>First  & more.</p>"_s);
    check({"delete", {"uDelete", "Ed1_Delete"}, {{Qt::Key_Delete, {}}}, nullptr, select, gone});
    check({"cut", {"uCut", "Ed_Cut"}, {{Qt::Key_X, Ctrl}, {Qt::Key_Delete, Shift}}, nullptr, select, [=] {
               return gone() && copied();
           }});
    check({"copy",
           {"uCopy", "Ed2_Copy"},
           {{Qt::Key_C, Ctrl}, {Qt::Key_Insert, Ctrl}},
           nullptr,
           select,
           copied});
    check({"copy as text", {"uCopyText", "Ed_CopyText"}, {{Qt::Key_T, Ctrl}}, nullptr, select, copied});
    check({"paste",
           {"uPaste", "Ed3_Paste"},
           {{Qt::Key_V, Ctrl}, {Qt::Key_Insert, Shift}},
           nullptr,
           [this] {
               caretAtWord();
               SetClipboardText(u"two  new "_s);
           },
           text(u"<p>First two new words & more.</p>"_s)});
    check(
        {"paste as html",
         {"uPasteHtml", "Ed4_PasteHtml"},
         {{Qt::Key_H, Ctrl}},
         nullptr,
         [this] {
             caretAtWord();
             SetClipboardText(u"<DIV>new</DIV>"_s);
         },
         [this] { return LineText(line() + 1) == u"new"_s && LineText(line() + 2).startsWith(u"words"_s); }});
}

TEST_F(Commands, BlankAndTagCommandsWorkFromEveryPath)
{
    OpenBook();
    const auto select = [this] { selectWord(); };
    const auto tagged
        = [this](const QString& tag) { return text(u"<p>First <%1>words</%1> & more.</p>"_s.arg(tag)); };
    check({"nbsp",
           {"uInsertNbsp", "Ed5_InsertNbsp"},
           {{Qt::Key_Space, Ctrl}},
           nullptr,
           select,
           text(u"<p>First \x7f & more.</p>"_s)});
    check({"space",
           {},
           {{Qt::Key_Space, {}}, {Qt::Key_Space, Shift}, {Qt::Key_Space, Qt::AltModifier}},
           nullptr,
           [this] {
               const Position at = PlaceOf(u"words"_s);
               PutCaret({at.line, at.offset + 2});
           },
           text(u"<p>First wo rds & more.</p>"_s)});
    check({"bold", {"uBold", "Ed_Bold"}, {{Qt::Key_B, Ctrl}}, nullptr, select, tagged(u"strong"_s)});
    check({"italic", {"uItalic", "Ed_Italic"}, {{Qt::Key_I, Ctrl}}, nullptr, select, tagged(u"emphasis"_s)});
    check({"superscript", {"uSuperscript", "Ed_Superscript"}, {}, nullptr, select, tagged(u"sup"_s)});
    check({"subscript", {"uSubscript", "Ed_Subscript"}, {}, nullptr, select, tagged(u"sub"_s)});
    check({"upper case",
           {"uUpperCase", "Ed8_UpperCase"},
           {},
           nullptr,
           select,
           text(u"<p>First WORDS & more.</p>"_s)});
    check({"proper case",
           {"uProperCase", "Ed9_ProperCase"},
           {},
           nullptr,
           select,
           text(u"<p>First Words & more.</p>"_s)});
    check({"lower case",
           {"uLowerCase", "Ed7_LowerCase"},
           {},
           nullptr,
           [this] {
               const Position at = PlaceOf(u"First"_s);
               Document().setSelection(at, {at.line, at.offset + 5});
           },
           [this] { return FindLine(u"<p>first words"_s) >= 0; }});
}

TEST_F(Commands, FieldsAreReachedByTheHiddenEntriesOfBothMenus)
{
    OpenBook();
    const auto select = [this] { selectWord(); };
    check({"text",
           {"uInsertTextField", "Ed41_InsertTextField"},
           {},
           nullptr,
           select,
           html(u"<SPAN class=b>words</SPAN>"_s)});
    check({"tag",
           {"uInsertTagField", "Ed42_InsertTagField"},
           {},
           nullptr,
           select,
           html(u"<SPAN class=et>words</SPAN>"_s)});
    check({"attribute",
           {"uInsertTagAttributeField", "Ed43_InsertTagAttributeField"},
           {},
           nullptr,
           select,
           html(u"<FONT class=en>words</FONT>"_s)});
    check({"value",
           {"uInsertTagAttributeValueField", "Ed44_InsertTagAttributeValueField"},
           {},
           nullptr,
           select,
           html(u"<FONT class=ev>words</FONT>"_s)});
}

TEST_F(Commands, RepaintAndShiftCommandsWorkFromEveryPath)
{
    OpenBook();
    const int before = margin();
    ASSERT_GE(before, NodeShift);
    check({"repaint",
           {"uRePaintSelection", "Ed_RePaintSelection"},
           {{Qt::Key_Escape, {}}},
           "re-paint selection",
           [this] {
               caretAtWord();
               Document().typeText(u"<i>"_s);
           },
           html(u"First <SPAN class=t>&lt;i&gt;</SPAN>words"_s)});
    check({"right shift",
           {"uRightShift", "Ed_RightShift"},
           {{Qt::Key_Tab, {}}},
           "right shift",
           [this] { caretAtWord(); },
           [this, before] { return margin() == before + NodeShift; }});
    check({"left shift",
           {"uLeftShift", "Ed_LeftShift"},
           {{Qt::Key_Tab, Ctrl}},
           "left shift",
           [this] { caretAtWord(); },
           [this, before] { return margin() == before - NodeShift; }});
}

TEST_F(Commands, ALineCopiedByDoubleClickIsPastedAsASeparateLine)
{
    OpenBook();
    const QString first = LineText(line());
    const Position end{line() + 1, int(LineText(line() + 1).size())};
    DoubleClick(PlaceOf(u"words"_s));
    Key(Qt::Key_C, Ctrl);
    // At the end of a line it is inserted below the line, at its start above it.
    PutCaret(end);
    Key(Qt::Key_V, Ctrl);
    EXPECT_EQ(LineText(end.line + 1), first);
    EXPECT_EQ(margin(), page::item(Document(), end.line + 2).marginLeft());
    Key(Qt::Key_Z, Ctrl);
    PutCaret({end.line, 0});
    Key(Qt::Key_V, Ctrl);
    EXPECT_EQ(LineText(end.line), first);
    EXPECT_TRUE(LineText(end.line + 1).startsWith(u"<p>Second"_s));
}

TEST_F(Commands, TabWithShiftIsNoShift)
{
    OpenBook();
    const int before = margin();
    caretAtWord();
    Key(Qt::Key_Tab, Shift);
    EXPECT_EQ(margin(), before);
}

TEST_F(Commands, APageThatIsNoBookStaysAsItIs)
{
    Open();
    const QByteArray page = Document().savePage();
    SetClipboardText(u"<DIV>new</DIV>"_s);
    for (const auto command : {Command::Paste, Command::PasteHtml, Command::Bold, Command::InsertNbsp,
                               Command::InsertSpace, Command::InsertTextField, Command::RightShift})
        form->RunCommand(command);
    EXPECT_TRUE(BookUnchanged);
    Key(Qt::Key_V, Ctrl);
    EXPECT_EQ(Document().savePage(), page);
}

TEST_F(Commands, OneUndoRevertsAShiftOrARepaintWithItsSelection)
{
    OpenBook();
    const QByteArray page = Document().savePage();
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Escape}) {
        const Position from = PlaceOf(u"words"_s);
        const Position to = PlaceOf(u"Third"_s);
        Document().setSelection(from, to);
        const Selection before = Document().selection();
        Key(key);
        EXPECT_EQ(UndoSteps, 2);
        Key(Qt::Key_Z, Ctrl);
        EXPECT_EQ(Document().savePage(), page);
        EXPECT_EQ(Document().selection(), before);
    }
}

TEST_F(Commands, ALineHigherThanTheViewStaysWhereItIsUnderAShiftOrARepaint)
{
    // A narrower line is broken at other positions, and so are the pieces of a long line.
    const std::pair<int, int> lines[] = {{550, 20}, {4'000, 200}};
    for (const auto& [count, tolerance] : lines) {
        std::string text = SmallBook;
        std::string words;
        for (int i = 0; i < count; ++i)
            words += "word" + std::to_string(i) + " and ";
        OpenBook(text.insert(text.find("Third"), words));
        form->resize(700, 350);
        const QString word = u"word%1 "_s.arg(count / 2);
        const Position caret = PlaceOf(word);
        for (const Keys& keys : {Keys{Qt::Key_Escape, {}}, {Qt::Key_Tab, {}}, {Qt::Key_Tab, Ctrl}}) {
            PutCaret(caret);
            View().scrollIntoView({caret.line, caret.offset - 400});
            const int top = View().scrollTop();
            ASSERT_GT(top, View().clientHeight());
            Key(keys.key, keys.modifiers);
            EXPECT_NEAR(View().scrollTop(), top, tolerance);
            EXPECT_EQ(Document().selection().focus.line, caret.line);
            EXPECT_NEAR(Document().selection().focus.offset, caret.offset, 1) << count;
            Key(Qt::Key_Z, Ctrl);
            EXPECT_EQ(Document().selection().focus, caret);
        }
    }
}

// ---------------------------------------------------------------- the context menu

namespace {

class TagMenu : public Commands
{
protected:
    void SetUp() override
    {
        std::string text = SmallBook;
        text.replace(text.find("Third line."), 11,
                     "<a l:href=\"#n1\">note</a><image l:href=\"#pic.png\"/><image l:href=\"#none.png\"/>");
        text.replace(text.find("<p>Second"), 3, "<p id=\"n1\">");
        text.replace(text.find("</body>"), 7,
                     "</body><binary id=\"pic.png\" content-type=\"image/png\">AAAA</binary>");
        OpenBook(text);
    }

    /// Right-clicks a tag and returns the entries of its menu.
    QStringList click(const QString& tag)
    {
        const Position at = PlaceOf(tag);
        form->Status->setPanelText(1, u"old"_s);
        QTest::mouseClick(View().viewport(), Qt::RightButton, {}, PointOf({at.line, at.offset + 2}));
        EXPECT_TRUE(WaitFor([this] { return form->MnRightClick->isVisible(); }));
        QStringList enabled;
        for (const char* name :
             {"Ed_GoToLink", "Ed_CheckId", "Ed_ShowImage", "Ed_RemoveImageResource", "Ed_AddImageResource"}) {
            if (form->Entry(name)->isEnabled())
                enabled.append(QLatin1StringView(name));
        }
        form->MnRightClick->close();
        EXPECT_EQ(Panel(1), QString());
        EXPECT_EQ(Message(), QString());
        return enabled;
    }
};

} // namespace

TEST_F(TagMenu, OutsideATagAllFiveEntriesAreDisabled)
{
    EXPECT_EQ(click(u"First"_s), QStringList());
    EXPECT_EQ(click(u"<strong>"_s), QStringList());
}

TEST_F(TagMenu, ALinkIsFollowedToItsTarget)
{
    EXPECT_EQ(click(u"<a l:href"_s), QStringList{u"Ed_GoToLink"_s});
    form->Entry("Ed_GoToLink")->trigger();
    EXPECT_EQ(SelectedText(), u"id=\"n1\""_s);
    EXPECT_EQ(Message(), u"found: id=\"n1\""_s);
    EXPECT_EQ(soundNames.last(), u"NoParseError.wav"_s);
}

TEST_F(TagMenu, AnIdIsChecked)
{
    EXPECT_EQ(click(u"<p id"_s), QStringList{u"Ed_CheckId"_s});
    form->Entry("Ed_CheckId")->trigger();
    EXPECT_EQ(Message(), u"id is OK: id=\"n1\""_s);
    PutCaret(PlaceOf(u"First"_s));
    Document().typeText(u"id=\"n1\" "_s);
    form->Entry("Ed_CheckId")->trigger();
    EXPECT_EQ(Message(), u"id already exists: id=\"n1\""_s);
    EXPECT_EQ(soundNames.last(), u"ParseError.wav"_s);
}

TEST_F(TagMenu, AnImageWithAResourceIsShownOrRemovedAndOneWithoutIsAdded)
{
    EXPECT_EQ(click(u"<image l:href=\"#pic"_s),
              (QStringList{u"Ed_ShowImage"_s, u"Ed_RemoveImageResource"_s}));
    EXPECT_EQ(click(u"<image l:href=\"#none"_s), QStringList{u"Ed_AddImageResource"_s});
}

} // namespace vmk
