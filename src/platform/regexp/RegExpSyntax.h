#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace vmk {

/// The construct at which the engine calls back.
inline constexpr QStringView CheckPoint = u"(?C)";

/// A pattern in the syntax of the engine.
struct EnginePattern
{
    /// With a `CheckPoint` wherever a search may exceed its time; without one where it cannot.
    QString text;
    /// The number of capturing groups.
    int groupCount = 0;
    /// The number of positions where the search may branch: quantifiers and groups with alternatives.
    int choices = 0;
};

/// Translates a pattern of our dialect to PCRE2, so that each construct has the meaning of the dialect.
/// Returns no value for a bad pattern. Syntax of other dialects is bad too, because it would silently have
/// another meaning: groups beginning with `(?` other than `(?:`, `(?=` and `(?!`, verbs `(*`, a quantifier
/// after a quantifier (also possessive) or after an anchor, POSIX classes, and a backslash before a letter
/// without a meaning here (`\A \Z \z \G \K \R \X \h \Q \E \p \g \k` and so on). A `{` that begins no
/// quantifier, and a single `]` or `}`, are plain characters; `[]` matches nothing and `[^]` everything; a
/// number after a backslash that is not the number of a group is octal.
[[nodiscard]] std::optional<EnginePattern> TranslatePattern(QStringView pattern);

} // namespace vmk
