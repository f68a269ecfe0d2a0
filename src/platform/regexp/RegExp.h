#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>
#include <vector>

namespace vmk {

/// One match. Positions and lengths are in UTF-16 code units, from 0.
struct RegExpMatch
{
    QString Value;
    qsizetype FirstIndex = 0;
    qsizetype Length = 0;
    /// The groups from the first on; a group that did not participate is empty.
    QStringList SubMatches;
};

/// The limits of the result of a replacement, in UTF-16 code units: this, or that multiple of the text if it
/// is more.
inline constexpr qsizetype RegExpFreeResult = qsizetype(64) * 1024 * 1024;
inline constexpr qsizetype RegExpResultGrowth = 16;

/// A regular expression in the dialect of ECMAScript, third edition.
///
/// Set the four properties and call a function; patterns are compiled on first use and cached. A call returns
/// no value on failure: if the pattern is bad (which includes syntax of other dialects, see RegExpSyntax.h),
/// or if the search exceeds its time limit: a quarter of a second of processor time plus a tenth of a second
/// per million code units.
///
/// The dialect: `.` is anything except LF; `\w`, `\d`, `\b` are ASCII only; `\s` is blank, tab, LF, VT, FF
/// and CR, not the non-breaking space; ignoring case applies to all letters; `^` and `$` match at the ends of
/// the text and, with `MultiLine`, after and before each LF; a reference to a group that did not participate
/// matches the empty text. A character outside the basic plane counts as one character for `.` and classes.
class RegExp
{
public:
    QString Pattern;
    bool IgnoreCase = false;
    /// Finds all matches, not only the first one.
    bool Global = false;
    bool MultiLine = false;
    /// Pattern and text are bytes, as the characters 0 to 255: only A to Z have a case.
    bool ByteText = false;

    /// Returns the non-overlapping matches from left to right. After an empty match the search continues one
    /// character later.
    [[nodiscard]] std::optional<std::vector<RegExpMatch>> Execute(QStringView text) const;

    /// Returns the text with its matches replaced by the template. In the template, `$1` to `$99` are groups,
    /// `$&` is the match, `` $` `` and `$'` are the text before and after it, and `$$` is a dollar;
    /// everything else, including numbers without a group, is plain text. `count`, if not null, receives the
    /// number of replacements. A result larger than the limits above is a failure.
    [[nodiscard]] std::optional<QString> Replace(QStringView text, QStringView replacement,
                                                 qsizetype* count = nullptr) const;

    /// Returns whether there is a match.
    [[nodiscard]] std::optional<bool> Test(QStringView text) const;

    /// Returns the number of matches.
    [[nodiscard]] std::optional<qsizetype> Count(QStringView text) const;

private:
    class Matcher;

    /// Calls `take` with each match until there are no more; returns false on failure.
    [[nodiscard]] bool forEachMatch(QStringView text, const std::function<void(const Matcher&)>& take) const;
};

} // namespace vmk
