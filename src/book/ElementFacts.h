#pragma once

#include "TreeLines.h"

#include <array>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// Tags that the update of the description looks for.
inline constexpr std::array<std::string_view, 4> DescriptionNames
    = {"program-used", "document-info", "title-info", "description"};

/// The properties of all elements of one name, for the layout of a book.
struct ElementFacts
{
    std::string name;
    bool isInLine = false; ///< for the layout
    bool isInLineWord = false; ///< for the words beside it
    bool isText = false; ///< contains text
    bool describes = false; ///< one of `DescriptionNames`
    // How many line ends a tag without attributes removes after itself, and before itself.
    int startAfter = 0, endAfter = 0, emptyAfter = 0;
    int startBefore = 0, endBefore = 0, emptyBefore = 0;
};

/// The facts about mark-up that is no element.
inline const ElementFacts NoElement;

/// Returns the names of the elements that may be parts of words.
[[nodiscard]] std::vector<std::string> WordNames(const InLineTagSet& inLineTags);

/// Returns true if each entry is the tag of an element without attributes. `ElementTable` requires it.
[[nodiscard]] bool AreBareTags(const InLineTagSet& inLineTags);

/// The facts about the elements of a text, by name.
class ElementTable
{
public:
    explicit ElementTable(const InLineTagSet& inLineTags);

    /// Returns null if there are too many names.
    [[nodiscard]] const ElementFacts* find(std::string_view name);

private:
    [[nodiscard]] ElementFacts makeFacts(std::string_view name) const;

    const InLineTagSet& inLineTags;
    std::vector<std::string> inLineNames;
    std::vector<std::string> wordNames;
    std::vector<std::string> textNames;
    std::deque<ElementFacts> known;
    std::array<const ElementFacts*, 1024> slots{};
};

} // namespace vmk
