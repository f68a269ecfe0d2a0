#include "VirtualKeys.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <string_view>

namespace vmk {

namespace {

struct KeyPair
{
    int qtKey;
    int code;
};

constexpr std::array NamedKeys = std::to_array<KeyPair>({
    {Qt::Key_Backspace, VirtualKey::Backspace},
    {Qt::Key_Tab, VirtualKey::Tab},
    {Qt::Key_Backtab, VirtualKey::Tab},
    {Qt::Key_Return, VirtualKey::Enter},
    {Qt::Key_Enter, VirtualKey::Enter},
    {Qt::Key_Shift, VirtualKey::Shift},
    {Qt::Key_Control, VirtualKey::Control},
    {Qt::Key_Alt, VirtualKey::Alt},
    {Qt::Key_AltGr, VirtualKey::Alt},
    {Qt::Key_Pause, VirtualKey::Pause},
    {Qt::Key_CapsLock, VirtualKey::CapsLock},
    {Qt::Key_Escape, VirtualKey::Escape},
    {Qt::Key_Space, VirtualKey::Space},
    {Qt::Key_PageUp, VirtualKey::PageUp},
    {Qt::Key_PageDown, VirtualKey::PageDown},
    {Qt::Key_End, VirtualKey::End},
    {Qt::Key_Home, VirtualKey::Home},
    {Qt::Key_Left, VirtualKey::Left},
    {Qt::Key_Up, VirtualKey::Up},
    {Qt::Key_Right, VirtualKey::Right},
    {Qt::Key_Down, VirtualKey::Down},
    {Qt::Key_Print, VirtualKey::PrintScreen},
    {Qt::Key_Insert, VirtualKey::Insert},
    {Qt::Key_Delete, VirtualKey::Delete},
    {Qt::Key_Super_L, VirtualKey::LeftWindows},
    {Qt::Key_Meta, VirtualKey::LeftWindows},
    {Qt::Key_Super_R, VirtualKey::RightWindows},
    {Qt::Key_Menu, VirtualKey::Menu},
    {Qt::Key_NumLock, VirtualKey::NumLock},
    {Qt::Key_ScrollLock, VirtualKey::ScrollLock},
});

/// The punctuation keys: both characters of each key, and its code.
struct PunctuationKey
{
    char plain;
    char shifted;
    int code;
};

constexpr std::array PunctuationKeys = std::to_array<PunctuationKey>({
    {';', ':', 186},
    {'=', '+', 187},
    {',', '<', 188},
    {'-', '_', 189},
    {'.', '>', 190},
    {'/', '?', 191},
    {'`', '~', 192},
    {'[', '{', 219},
    {'\\', '|', 220},
    {']', '}', 221},
    {'\'', '"', 222},
});

/// The characters of Shift with the digits 0 to 9.
constexpr std::string_view ShiftedDigits = ")!@#$%^&*(";

/// The rows of the keyboard by scan code, each from its first key on.
struct KeyRow
{
    unsigned firstScanCode;
    std::string_view keys;
};

constexpr std::array KeyRows = std::to_array<KeyRow>({
    {10, "1234567890-="},
    {24, "QWERTYUIOP[]"},
    {38, "ASDFGHJKL;'`"},
    {51, "\\ZXCVBNM,./"},
});

int CodeOfCharacter(int character)
{
    if ((character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9'))
        return character;
    if (character >= 'a' && character <= 'z')
        return character - 'a' + 'A';
    for (const PunctuationKey& key : PunctuationKeys) {
        if (character == key.plain || character == key.shifted)
            return key.code;
    }
    if (character <= 0 || character > '~')
        return 0;
    const size_t digit = ShiftedDigits.find(static_cast<char>(character));
    return digit == std::string_view::npos ? 0 : '0' + static_cast<int>(digit);
}

int CodeOfScanCode(unsigned scanCode)
{
    for (const KeyRow& row : KeyRows) {
        if (scanCode >= row.firstScanCode && scanCode < row.firstScanCode + row.keys.size())
            return CodeOfCharacter(row.keys[scanCode - row.firstScanCode]);
    }
    return 0;
}

int CodeOnNumberPad(int qtKey)
{
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
        return VirtualKey::NumPad0 + qtKey - Qt::Key_0;
    switch (qtKey) {
    case Qt::Key_Asterisk:
        return 106;
    case Qt::Key_Plus:
        return 107;
    case Qt::Key_Minus:
        return 109;
    case Qt::Key_Period:
    case Qt::Key_Comma:
        return 110;
    case Qt::Key_Slash:
        return 111;
    default:
        return 0;
    }
}

} // namespace

int VirtualKeyCode(int qtKey, bool numberPad, unsigned scanCode)
{
    if (numberPad) {
        if (const int code = CodeOnNumberPad(qtKey))
            return code;
    }
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return VirtualKey::F1 + qtKey - Qt::Key_F1;
    const auto named = std::find_if(NamedKeys.begin(), NamedKeys.end(),
                                    [qtKey](const KeyPair& pair) { return pair.qtKey == qtKey; });
    if (named != NamedKeys.end())
        return named->code;
    // A letter of another script or a dead key: the position of the key decides.
    if (const int code = CodeOfCharacter(qtKey))
        return code;
    return CodeOfScanCode(scanCode);
}

int VirtualKeyCode(const QKeyEvent& event)
{
    return VirtualKeyCode(event.key(), event.modifiers().testFlag(Qt::KeypadModifier),
                          event.nativeScanCode());
}

} // namespace vmk
