#include "VirtualKeys.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace vmk {
namespace {

int codeOf(int key, Qt::KeyboardModifiers modifiers = {}, unsigned scanCode = 0)
{
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, scanCode, 0, 0);
    return VirtualKeyCode(event);
}

TEST(VirtualKeys, EditingKeysHaveTheCodesOfABrowser)
{
    EXPECT_EQ(codeOf(Qt::Key_Backspace), 8);
    EXPECT_EQ(codeOf(Qt::Key_Tab), 9);
    EXPECT_EQ(codeOf(Qt::Key_Backtab, Qt::ShiftModifier), 9);
    EXPECT_EQ(codeOf(Qt::Key_Return), 13);
    EXPECT_EQ(codeOf(Qt::Key_Enter, Qt::KeypadModifier), 13);
    EXPECT_EQ(codeOf(Qt::Key_Escape), 27);
    EXPECT_EQ(codeOf(Qt::Key_Space), 32);
    EXPECT_EQ(codeOf(Qt::Key_Left), 37);
    EXPECT_EQ(codeOf(Qt::Key_Down), 40);
    EXPECT_EQ(codeOf(Qt::Key_Insert), 45);
    EXPECT_EQ(codeOf(Qt::Key_Delete), 46);
    EXPECT_EQ(codeOf(Qt::Key_F3), 114);
    EXPECT_EQ(codeOf(Qt::Key_F12), 123);
    EXPECT_EQ(codeOf(Qt::Key_NumLock), 144);
}

TEST(VirtualKeys, LettersAndDigitsAreTheirCapitals)
{
    EXPECT_EQ(codeOf(Qt::Key_A), 65);
    EXPECT_EQ(codeOf(Qt::Key_Z, Qt::ControlModifier), 90);
    EXPECT_EQ(codeOf(Qt::Key_7), 55);
    EXPECT_EQ(codeOf(Qt::Key_Ampersand, Qt::ShiftModifier), 55);
    EXPECT_EQ(codeOf(Qt::Key_5, Qt::KeypadModifier), 101);
}

TEST(VirtualKeys, AKeyOfAnotherScriptHasTheCodeOfItsPosition)
{
    // The key C types a Cyrillic "с"; its scan code is 54.
    EXPECT_EQ(codeOf(0x421, Qt::ControlModifier, 54), 'C');
    EXPECT_EQ(codeOf(Qt::Key_Dead_Acute, {}, 48), 222);
    EXPECT_EQ(codeOf(0x421, Qt::ControlModifier, 0), 0);
}

} // namespace
} // namespace vmk
