#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>
#include <vector>

namespace vmk {

/// One match. Positions and lengths in UTF-16 code units, from 0.
struct RegExpMatch
{
    QString Value;
    qsizetype FirstIndex = 0;
    qsizetype Length = 0;
    /// The groups from the first on; a group that took no part is empty.
    QStringList SubMatches;
};

/// A regular expression of the dialect that scripts of the third ECMAScript edition use.
///
/// Set the four properties and call; patterns are compiled when first used and remembered. A call that fails
/// gives no value: the pattern is bad (which includes syntax of other dialects, see RegExpSyntax.h), or it
/// ran away on this text: a call may take a quarter of a second of the processor's time, and a tenth of a
/// second more for each million code units.
///
/// The dialect: `.` is anything but LF; `\w`, `\d`, `\b` know ASCII only; `\s` is blank, tab, LF, VT, FF and
/// CR, not the non-breaking space; ignoring case covers all letters; `^` and `$` hold at the ends of the
/// text, and with `MultiLine` behind and before each LF; a reference to a group that took no part matches
/// emptily. A character outside the basic plane counts as one for `.` and classes.
class RegExp
{
public:
    QString Pattern;
    bool IgnoreCase = false;
    /// All matches, not the first alone.
    bool Global = false;
    bool MultiLine = false;
    /// Pattern and text hold bytes, as the characters 0 to 255: only A to Z have a case.
    bool ByteText = false;

    /// The matches from left to right, none overlapping; behind an empty match the search goes on one
    /// character further.
    [[nodiscard]] std::optional<std::vector<RegExpMatch>> Execute(QStringView text) const;

    /// The text with its matches replaced by the template, in which `$1` to `$99` are groups, `$&` is the
    /// match,
    /// `` $` `` and `$'` what stands before and behind it, `$$` a dollar; all else, numbers without a group
    /// included, is plain text. `count`, when given, receives the number of replacements.
    [[nodiscard]] std::optional<QString> Replace(QStringView text, QStringView replacement,
                                                 qsizetype* count = nullptr) const;

    /// Whether there is a match.
    [[nodiscard]] std::optional<bool> Test(QStringView text) const;

    /// Number of matches.
    [[nodiscard]] std::optional<qsizetype> Count(QStringView text) const;

private:
    class Matcher;

    /// Calls back with each match in turn until there are no more; false on failure.
    [[nodiscard]] bool forEachMatch(QStringView text, const std::function<void(const Matcher&)>& take) const;
};

} // namespace vmk
