#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace vmk {

/// How the engine is told to call back.
inline constexpr QStringView CheckPoint = u"(?C)";

/// A pattern in the words of the engine underneath.
struct EnginePattern
{
    /// With a `CheckPoint` wherever a search must be looked at lest it run away; none where it cannot.
    QString text;
    /// Groups that keep what they match.
    int groupCount = 0;
    /// Places where the search may branch: quantifiers and groups with alternatives.
    int choices = 0;
};

/// Reads a pattern of our dialect and writes it for PCRE2, so that each construct means what the dialect
/// says. No value for a bad pattern. Refused besides plain mistakes: everything that only other dialects
/// have, so that nobody gets another meaning than the one intended: groups beginning with `(?` other than
/// `(?:`, `(?=` and `(?!`, verbs `(*`, a quantifier behind a quantifier (possessive ones too) or behind an
/// anchor, POSIX classes, and a backslash before a letter that means nothing here (`\A \Z \z \G \K \R \X \h
/// \Q \E \p \g \k` and so on). A `{` that begins no quantifier, `]` and `}` alone stand for themselves; `[]`
/// matches nothing and
/// `[^]` everything; a number behind a backslash that names no group is octal.
[[nodiscard]] std::optional<EnginePattern> TranslatePattern(QStringView pattern);

} // namespace vmk
