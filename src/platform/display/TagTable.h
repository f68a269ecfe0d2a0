#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace vmk {

/// Number of an interned start tag; `NoTag` stands for "no tag at all".
using TagId = std::uint32_t;
inline constexpr TagId NoTag = 0;

/// One start tag as it was written, so far as it reads back as the same tag.
struct Tag
{
    QString name; ///< In capitals: `DIV`, `SPAN`.
    QString attributes; ///< The text between name and `>`, trimmed, quotes and all: `class=t`.
    QString id; ///< Value of the attribute `id`, without quotes; empty when it has none.
    QString className; ///< Value of the attribute `class`.
    QString style; ///< Value of the attribute `style`.

    /// The value of any attribute, without quotes and with its character references resolved.
    /// @param attribute name in any case.
    /// @return a null string when the tag does not have it.
    [[nodiscard]] QString value(QStringView attribute) const;
    /// The start tag with its angle brackets: `<DIV id=FirstDiv>`.
    [[nodiscard]] QString startTag() const;
    [[nodiscard]] QString endTag() const;
    /// Appends the start tag, or the end tag, to a text.
    void writeStart(QString& html) const;
    void writeEnd(QString& html) const;
};

/// Every different start tag of a document, once. A book of a million tags has some dozens of different
/// ones; lines and marks hold numbers only. Tags are never taken out, so a number stays good as long as
/// the table lives, undo steps included.
class TagTable
{
public:
    TagTable();
    TagTable(const TagTable&) = delete;
    TagTable& operator=(const TagTable&) = delete;
    ~TagTable();

    /// The number of the start tag with this name (any case) and attribute text.
    ///
    /// Whatever the text holds, the tag reads back as itself: blanks and the slash of `<BR/>` at its ends go,
    /// line ends are blanks, angle brackets stand as references, an open quote is closed, a value that is
    /// missing behind its `=` is empty.
    [[nodiscard]] TagId intern(QStringView name, QStringView attributes);
    /// The tag of a number that `intern` gave; for `NoTag` a tag without a name.
    [[nodiscard]] const Tag& operator[](TagId id) const { return *tags[id]; }
    /// The same tag with one attribute set, added or (null value) taken away, however often it is there; the
    /// others stay as written.
    [[nodiscard]] TagId withAttribute(TagId id, QStringView attribute, const QString& value);
    [[nodiscard]] int size() const { return int(tags.size()); }

private:
    std::vector<std::unique_ptr<const Tag>> tags;
    QHash<QString, TagId> numbers; ///< By name and attribute text, also as these were given.
};

} // namespace vmk
