#pragma once

#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

/// One element per line: where a line break in an XML text is allowed.
namespace vmk {

/// Returns the in-line tags of a new workspace.
[[nodiscard]] QStringList DefaultInLineTags();

/// A set of tags that count as in-line, prepared for lookup.
class InLineTagSet
{
public:
    InLineTagSet() = default;
    /// \param entries  complete tags such as `<emphasis>`; blanks around them are ignored. With an empty
    ///                 entry, `TreeLines` inserts no line ends.
    explicit InLineTagSet(const QStringList& entries);

    /// The entries in UTF-8, trimmed, in the given order.
    [[nodiscard]] const std::vector<std::string>& entries() const { return texts; }
    /// The names of the elements that occur within running text: those of the entries and those that the
    /// format defines, so that an empty list does not join words.
    [[nodiscard]] std::vector<std::string> elementNames() const;
    /// True if one entry is empty.
    [[nodiscard]] bool hasEmptyEntry() const { return emptyEntry; }
    /// True if each entry is exactly one tag, so that it affects only line ends next to it.
    [[nodiscard]] bool isPlain() const { return plain; }
    /// The number of entries that are exactly this tag.
    [[nodiscard]] int count(std::string_view tag) const;

private:
    std::vector<std::string> texts;
    bool emptyEntry = false;
    bool plain = true;
};

/// Puts every element on its own line, except for those that must remain inside their paragraph.
///
/// The line ends of the text are removed without a replacement: two words that only a line end separates are
/// joined. Runs of blanks become one blank.
/// \param lineEnd  inserted between lines: CR or `CrLf`
[[nodiscard]] std::string TreeLines(std::string text, std::string_view lineEnd,
                                    const InLineTagSet& inLineTags);

/// Returns true for a start tag whose text remains on the same line in any case, such as `<date>`.
[[nodiscard]] bool IsFieldTag(std::string_view tag);

/// Returns whether `TreeLines` ends a line at `next` of a joined text, directly after a ">"; `from` is the
/// position after the previous ">". Requires a list without an empty entry.
[[nodiscard]] bool LineEndsAfter(std::string_view joined, size_t from, size_t next,
                                 const InLineTagSet& inLineTags);

/// Returns true if the text begins with a tag and each line end is in white space between a ">" and a "<" or
/// at the end. For such a text, `TreeLines` never turns a text that is not well-formed into one that is. For
/// others it may: "<sec", a line end, "tion>" is broken, and its joined form is not.
[[nodiscard]] bool LinesAreBetweenTags(std::string_view text);

/// Applies `TreeLines` with CR and the list `InLineTags`.
void PrepareTreeLines(std::string& text);

/// Applies `TreeLines` with `CrLf` and the list `InLineTags`.
void PrepareTreeLinesCrLf(std::string& text);

} // namespace vmk
