#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Small helpers on text, each for byte strings (a book's bytes) and for the display's text.
///
/// Ignoring case means the letters A to Z in byte strings, where other bytes may be parts of characters, and
/// all letters in text. Positions here are 0-based.
namespace vmk {

/// Position of the first occurrence at or behind `from`, or npos.
[[nodiscard]] size_t FindText(std::string_view text, std::string_view sought, size_t from = 0,
                              bool ignoreCase = false);
/// As above; -1 when there is none.
[[nodiscard]] qsizetype FindText(QStringView text, QStringView sought, qsizetype from = 0,
                                 bool ignoreCase = false);

/// Replaces every occurrence, from left to right; what has been put in is not looked at again. An empty
/// `sought` changes nothing. Move the text in: when nothing is found, or the replacement is not longer, no
/// copy is made.
[[nodiscard]] std::string ReplaceAll(std::string text, std::string_view sought, std::string_view replacement,
                                     bool ignoreCase = false);
[[nodiscard]] QString ReplaceAll(QString text, QStringView sought, QStringView replacement,
                                 bool ignoreCase = false);

/// Replaces every match of the pattern by the template (`$1`, `$&`; see RegExp.h). In a byte string each byte
/// is the character of that number. `count`, when given, receives the number of matches; with `multiLine`
/// the anchors ^ and $ hold at every line. A bad pattern leaves the text as it is, with the count 0.
[[nodiscard]] std::string RegExpReplace(std::string_view text, std::string_view pattern,
                                        std::string_view replacement, bool matchCase,
                                        int32_t* count = nullptr, bool multiLine = false);
[[nodiscard]] QString RegExpReplace(QStringView text, QStringView pattern, QStringView replacement,
                                    bool matchCase, int32_t* count = nullptr, bool multiLine = false);

/// Number of matches of the pattern; 0 when the pattern is bad.
[[nodiscard]] int32_t RegExpCount(std::string_view pattern, std::string_view text, bool matchCase);
[[nodiscard]] int32_t RegExpCount(QStringView pattern, QStringView text, bool matchCase);

/// Replaces unit + separator + unit by unit, over the whole text, until that changes nothing. With an empty
/// separator each run of the unit becomes one: of blanks a single blank, of line ends no empty lines.
[[nodiscard]] std::string CollapseRepeats(std::string text, std::string_view unit,
                                          std::string_view separator = {}, bool ignoreCase = false);
[[nodiscard]] QString CollapseRepeats(QString text, QStringView unit, QStringView separator = {},
                                      bool ignoreCase = false);

/// Number of occurrences that do not overlap; 0 for an empty `sought`.
[[nodiscard]] size_t CountOccurrences(std::string_view text, std::string_view sought,
                                      bool ignoreCase = false);
[[nodiscard]] qsizetype CountOccurrences(QStringView text, QStringView sought, bool ignoreCase = false);

/// True when nothing is left of the text after deleting every character 9, 32, 13, 10 and 160 and then, with
/// `countNbsp`, every "&nbsp;".
[[nodiscard]] bool IsBlank(std::string_view text, bool countNbsp = false);
[[nodiscard]] bool IsBlank(QStringView text, bool countNbsp = false);

/// The text without the blanks (character 32 alone) at its beginning and end.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

/// The text with A to Z made small.
[[nodiscard]] std::string LowerCase(std::string text);

/// A random fraction times `n`, rounded to the nearest whole number: 0 to `n`, both included.
[[nodiscard]] int32_t RandomBelow(double n);

/// The decimal digits in groups of three from the right, parted by a blank: 1234567 gives "1 234 567".
[[nodiscard]] QString GroupDigits(int64_t number);

/// The words (parted by any number of blanks) with a capital first letter and small letters behind, joined by
/// one blank.
[[nodiscard]] QString TitleCase(QStringView text);

/// Leaves `value` if the list holds exactly it, otherwise sets it to `fallback`.
void FindInArray(const QStringList& list, QString& value, const QString& fallback);

} // namespace vmk
