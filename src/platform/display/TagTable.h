#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace vmk {

/// The number of an interned start tag; `NoTag` means that there is no tag.
using TagId = std::uint32_t;
inline constexpr TagId NoTag = 0;

/// One start tag as written, as far as it reads back as the same tag.
struct Tag
{
    QString name; ///< In upper case: `DIV`, `SPAN`.
    QString attributes; ///< The text between name and `>`, trimmed, including quotes: `class=t`.
    QString id; ///< The value of the attribute `id`, without quotes; empty if it has none.
    QString className; ///< Value of the attribute `class`.
    QString style; ///< Value of the attribute `style`.
    QString align; ///< Value of the attribute `align`.

    /// Returns the value of any attribute, without quotes and with its character references resolved.
    /// \param attribute  the name, in any case
    /// \return a null string if the tag does not have it
    [[nodiscard]] QString value(QStringView attribute) const;
    /// The start tag with its angle brackets: `<DIV id=FirstDiv>`.
    [[nodiscard]] QString startTag() const;
    [[nodiscard]] QString endTag() const;
    /// Appends the start tag, or the end tag, to a text.
    void writeStart(QString& html) const;
    void writeEnd(QString& html) const;
};

/// The distinct start tags of a document. A book of a million tags has a few dozen distinct ones; lines and
/// marks store only their numbers. Tags are never removed, so that a number is valid for the lifetime of the
/// table, which includes undo steps.
class TagTable
{
public:
    TagTable();
    TagTable(const TagTable&) = delete;
    TagTable& operator=(const TagTable&) = delete;
    ~TagTable();

    /// Returns the number of the start tag with this name (in any case) and attribute text.
    ///
    /// The tag always reads back as itself: blanks and the slash of `<BR/>` at the ends of the text are
    /// removed, line ends become blanks, angle brackets become references, an open quote is closed, and a
    /// missing value after `=` is empty.
    [[nodiscard]] TagId intern(QStringView name, QStringView attributes);
    /// The tag of a number that `intern` returned; for `NoTag`, a tag without a name.
    [[nodiscard]] const Tag& operator[](TagId id) const { return *tags[id]; }
    /// Returns the same tag with one attribute set, added or (for a null value) removed, even if it occurs
    /// several times. The other attributes are unchanged.
    [[nodiscard]] TagId withAttribute(TagId id, QStringView attribute, const QString& value);
    [[nodiscard]] int size() const { return int(tags.size()); }

private:
    std::vector<std::unique_ptr<const Tag>> tags;
    QHash<QString, TagId>
        numbers; ///< By name and attribute text, also in the form in which they were passed.
};

} // namespace vmk
