#pragma once

#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

/// One element per line: where an XML text may be broken and where it must not be.
namespace vmk {

/// The list of in-line tags that a new workspace has.
[[nodiscard]] QStringList DefaultInLineTags();

/// The tags that count as in-line, ready for use.
class InLineTagSet
{
public:
    InLineTagSet() = default;
    /// \param entries  complete tag texts such as `<emphasis>`, blanks around them ignored. An empty entry
    ///                 takes all line ends out again.
    explicit InLineTagSet(const QStringList& entries);

    /// The entries in UTF-8, trimmed, in their order.
    [[nodiscard]] const std::vector<std::string>& entries() const { return texts; }
    /// Names of the elements that stand in the midst of text: those of the entries and those that the format
    /// has for this, so that a list left empty does not run words together.
    [[nodiscard]] std::vector<std::string> elementNames() const;
    /// True if an entry is empty.
    [[nodiscard]] bool hasEmptyEntry() const { return emptyEntry; }
    /// True if each entry is one tag and nothing else, so that it can only touch line ends next to it.
    [[nodiscard]] bool isPlain() const { return plain; }
    /// How many entries are exactly this tag.
    [[nodiscard]] int count(std::string_view tag) const;

private:
    std::vector<std::string> texts;
    bool emptyEntry = false;
    bool plain = true;
};

/// Gives every element a line of its own, apart from those that must stay inside their paragraph.
/// Line ends of the text vanish, and nothing is put in their place: two words that only a line end parts are
/// joined. Runs of blanks shrink to one.
/// \param lineEnd  what is put between lines: CR or `CrLf`
[[nodiscard]] std::string TreeLines(std::string text, std::string_view lineEnd,
                                    const InLineTagSet& inLineTags);

/// True if the text begins with a tag and each of its line ends stands in white space between a ">" and a "<"
/// or at the end. Then a fault of the text is also one of its `TreeLines`: what these take out or put in
/// never mends anything. (Elsewhere it may: "<sec", a line end, "tion>" is broken, and its joined form is
/// not.)
[[nodiscard]] bool LinesAreBetweenTags(std::string_view text);

/// `TreeLines` with CR and the list `InLineTags`.
void PrepareTreeLines(std::string& text);

/// `TreeLines` with `CrLf` and the list `InLineTags`.
void PrepareTreeLinesCrLf(std::string& text);

} // namespace vmk
