// The display from the view of a screen reader.

#include "AccessibleDisplay.h"
#include "ViewFixture.h"

#include <QAccessible>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

const QByteArray Lines = "<DIV id=FirstDiv><SPAN class=t>&lt;p&gt;</SPAN>text</DIV><DIV>second line</DIV>";

class ViewAccessibility : public ViewTest
{
protected:
    void SetUp() override
    {
        show(Lines);
        interface = QAccessible::queryAccessibleInterface(&view);
        ASSERT_NE(interface, nullptr);
        ASSERT_NE(interface->textInterface(), nullptr);
    }
    QAccessibleInterface* interface = nullptr;
};

TEST_F(ViewAccessibility, TextIsOneStringWithLineFeeds)
{
    QAccessibleTextInterface* text = interface->textInterface();
    EXPECT_EQ(interface->role(), QAccessible::EditableText);
    EXPECT_EQ(text->characterCount(), 19);
    EXPECT_EQ(text->text(0, 19), u"<p>text\nsecond line"_s);
    EXPECT_EQ(text->text(5, 11), u"xt\nsec"_s);
    EXPECT_EQ(interface->text(QAccessible::Value), u"<p>text\nsecond line"_s);
}

TEST_F(ViewAccessibility, CaretAndSelectionAreReportedAndSet)
{
    QAccessibleTextInterface* text = interface->textInterface();
    caretTo(1, 3);
    EXPECT_EQ(text->cursorPosition(), 11);
    EXPECT_EQ(text->selectionCount(), 0);
    text->setSelection(0, 2, 10);
    EXPECT_EQ(document().selection(), (Selection{{0, 2}, {1, 2}}));
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(text->selectionCount(), 1);
    EXPECT_EQ(start, 2);
    EXPECT_EQ(end, 10);
    text->setCursorPosition(8);
    EXPECT_EQ(document().selection(), (Selection{{1, 0}, {1, 0}}));
}

TEST_F(ViewAccessibility, CharacterRectanglesAndPointsAgree)
{
    QAccessibleTextInterface* text = interface->textInterface();
    for (int offset = 0; offset < text->characterCount(); ++offset) {
        const QRect rect = text->characterRect(offset);
        ASSERT_GT(rect.width(), 0) << offset;
        EXPECT_EQ(text->offsetAtPoint(QPoint(rect.left(), rect.center().y())), offset);
    }
    EXPECT_EQ(text->offsetAtPoint({-5000, -5000}), -1);
}

TEST_F(ViewAccessibility, AttributesDescribeTheStyleOfARun)
{
    QAccessibleTextInterface* text = interface->textInterface();
    int start = -1;
    int end = -1;
    const QString tag = text->attributes(1, &start, &end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, 3);
    EXPECT_TRUE(tag.contains(u"color:rgb(0,0,128)"_s));
    EXPECT_TRUE(tag.contains(u"font-weight:bold"_s));
    const QString plain = text->attributes(9, &start, &end);
    EXPECT_EQ(start, 8);
    EXPECT_EQ(end, 19);
    EXPECT_TRUE(plain.contains(u"font-weight:normal"_s));
    EXPECT_TRUE(plain.contains(u"font-family:\"DejaVu Sans\""_s));
}

TEST_F(ViewAccessibility, TextCanBeEdited)
{
    QAccessibleEditableTextInterface* edit = interface->editableTextInterface();
    ASSERT_NE(edit, nullptr);
    edit->insertText(8, u"my "_s);
    EXPECT_EQ(text(), u"<p>text|my second line"_s);
    edit->replaceText(0, 3, u"<v>"_s);
    EXPECT_EQ(line(0), u"<v>text"_s);
    edit->deleteText(7, 8);
    EXPECT_EQ(text(), u"<v>textmy second line"_s);
}

TEST_F(ViewAccessibility, AnEditReportsTheChangedCharacters)
{
    const auto linesOf = [this] {
        std::vector<LinePtr> lines;
        for (int i = 0; i < document().lineCount(); ++i)
            lines.push_back(document().linePtr(i));
        return lines;
    };
    const auto changeBy = [&](auto&& work) {
        const std::vector<LinePtr> before = linesOf();
        work();
        const CharacterChange change = ChangeBetween(before, linesOf());
        return u"%1 -%2 +%3"_s.arg(change.offset).arg(change.removed, change.inserted).toStdString();
    };
    caretTo(1, 3);
    EXPECT_EQ(changeBy([this] { type("x"); }), "11 - +x");
    EXPECT_EQ(changeBy([this] { key(Qt::Key_Backspace); }), "11 -x +");
    EXPECT_EQ(changeBy([this] { key(Qt::Key_Return); }), "11 - +\n");
    EXPECT_EQ(changeBy([this] { view.undo(); }), "11 -\n +");
    select({1, 0}, {1, 3});
    EXPECT_EQ(changeBy([this] { type("y"); }), "8 -sec +y");
}

TEST_F(ViewAccessibility, AReadOnlyPageIsReported)
{
    EXPECT_TRUE(interface->state().editable);
    view.setDesignMode(u"Off"_s);
    EXPECT_TRUE(interface->state().readOnly);
    EXPECT_EQ(interface->editableTextInterface(), nullptr);
}

} // namespace
} // namespace vmk
