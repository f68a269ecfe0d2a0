#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Small text functions, each for byte strings (the bytes of a book) and for text of the display.
///
/// Ignoring case applies to the letters A to Z in byte strings, where other bytes may be parts of characters,
/// and to all letters in text. Positions are 0-based.
namespace vmk {

/// Returns the position of the first occurrence at or after `from`, or npos.
[[nodiscard]] size_t FindText(std::string_view text, std::string_view sought, size_t from = 0,
                              bool ignoreCase = false);
/// As above; -1 if there is none.
[[nodiscard]] qsizetype FindText(QStringView text, QStringView sought, qsizetype from = 0,
                                 bool ignoreCase = false);

/// Replaces every occurrence, from left to right; inserted text is not searched again. An empty `sought`
/// changes nothing. Pass the text by move: if nothing is found, or if the replacement is not longer, no copy
/// is made.
[[nodiscard]] std::string ReplaceAll(std::string text, std::string_view sought, std::string_view replacement,
                                     bool ignoreCase = false);
[[nodiscard]] QString ReplaceAll(QString text, QStringView sought, QStringView replacement,
                                 bool ignoreCase = false);

/// Replaces every match of the pattern by the template (`$1`, `$&`; see RegExp.h). In a byte string, each
/// byte is the character with that number. `count`, if not null, receives the number of matches. With
/// `multiLine`, the anchors ^ and $ match at every line. A bad pattern changes nothing and sets the count to
/// 0.
[[nodiscard]] std::string RegExpReplace(std::string_view text, std::string_view pattern,
                                        std::string_view replacement, bool matchCase,
                                        int32_t* count = nullptr, bool multiLine = false);
[[nodiscard]] QString RegExpReplace(QStringView text, QStringView pattern, QStringView replacement,
                                    bool matchCase, int32_t* count = nullptr, bool multiLine = false);

/// Returns the number of matches of the pattern; 0 if the pattern is bad.
[[nodiscard]] int32_t RegExpCount(std::string_view pattern, std::string_view text, bool matchCase);
[[nodiscard]] int32_t RegExpCount(QStringView pattern, QStringView text, bool matchCase);

/// Replaces unit + separator + unit by unit in the whole text, until this changes nothing. With an empty
/// separator, each run of the unit becomes one unit: one blank instead of several, no empty lines.
[[nodiscard]] std::string CollapseRepeats(std::string text, std::string_view unit,
                                          std::string_view separator = {}, bool ignoreCase = false);
[[nodiscard]] QString CollapseRepeats(QString text, QStringView unit, QStringView separator = {},
                                      bool ignoreCase = false);

/// Returns the number of non-overlapping occurrences; 0 for an empty `sought`.
[[nodiscard]] size_t CountOccurrences(std::string_view text, std::string_view sought,
                                      bool ignoreCase = false);
[[nodiscard]] qsizetype CountOccurrences(QStringView text, QStringView sought, bool ignoreCase = false);

/// Returns true if nothing remains of the text after deleting every character 9, 32, 13, 10 and 160 and then,
/// with `countNbsp`, every "&nbsp;".
[[nodiscard]] bool IsBlank(std::string_view text, bool countNbsp = false);
[[nodiscard]] bool IsBlank(QStringView text, bool countNbsp = false);

/// Returns the text without the blanks (only character 32) at its beginning and end.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);
[[nodiscard]] QStringView TrimBlanks(QStringView text);

/// Returns the text with A to Z in lower case.
[[nodiscard]] std::string LowerCase(std::string text);

/// Returns a random fraction of `n`, rounded to the nearest whole number: from 0 to `n`, inclusive.
[[nodiscard]] int32_t RandomBelow(double n);

/// Returns the decimal digits in groups of three from the right, separated by blanks: 1234567 becomes
/// "1 234 567".
[[nodiscard]] QString GroupDigits(int64_t number);

/// Returns the words (separated by any number of blanks) with a capital first letter and the rest in lower
/// case, joined by one blank.
[[nodiscard]] QString TitleCase(QStringView text);

/// Keeps `value` if the list contains exactly this value, otherwise sets it to `fallback`.
void FindInArray(const QStringList& list, QString& value, const QString& fallback);

} // namespace vmk
