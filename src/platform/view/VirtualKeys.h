#pragma once

class QKeyEvent;

namespace vmk {

/// The Windows virtual key codes of the editing keys.
namespace VirtualKey {
inline constexpr int Backspace = 8;
inline constexpr int Tab = 9;
inline constexpr int Enter = 13;
inline constexpr int Shift = 16;
inline constexpr int Control = 17;
inline constexpr int Alt = 18;
inline constexpr int Pause = 19;
inline constexpr int CapsLock = 20;
inline constexpr int Escape = 27;
inline constexpr int Space = 32;
inline constexpr int PageUp = 33;
inline constexpr int PageDown = 34;
inline constexpr int End = 35;
inline constexpr int Home = 36;
inline constexpr int Left = 37;
inline constexpr int Up = 38;
inline constexpr int Right = 39;
inline constexpr int Down = 40;
inline constexpr int PrintScreen = 44;
inline constexpr int Insert = 45;
inline constexpr int Delete = 46;
inline constexpr int LeftWindows = 91;
inline constexpr int RightWindows = 92;
inline constexpr int Menu = 93;
inline constexpr int NumPad0 = 96;
inline constexpr int F1 = 112;
inline constexpr int NumLock = 144;
inline constexpr int ScrollLock = 145;
} // namespace VirtualKey

/// Returns the virtual key code of a key event. It depends on the key, not on the character that it types, so
/// that Ctrl with the key C is 67 in a Cyrillic layout too. 0 for a key without a code.
[[nodiscard]] int VirtualKeyCode(const QKeyEvent& event);

/// The same for separate values: a `Qt::Key`, whether it is on the number pad, and the keyboard's scan code
/// (evdev number plus 8), 0 if unknown.
[[nodiscard]] int VirtualKeyCode(int qtKey, bool numberPad, unsigned scanCode);

} // namespace vmk
