#include "ElementFacts.h"

#include "CommonMarkup.h"
#include "KeptLines.h"
#include "TextFunctions.h"

#include <algorithm>

namespace vmk {

std::vector<std::string> WordNames(const InLineTagSet& inLineTags)
{
    std::vector<std::string> names = inLineTags.elementNames();
    names.insert(names.end(), {"code", "image"});
    return names;
}

bool AreBareTags(const InLineTagSet& inLineTags)
{
    return !inLineTags.hasEmptyEntry() && inLineTags.isPlain()
        && std::ranges::all_of(inLineTags.entries(), [](std::string_view entry) {
               entry = entry.substr(1, entry.size() - 2);
               if (entry.starts_with('/'))
                   entry.remove_prefix(1);
               else if (entry.ends_with('/'))
                   entry.remove_suffix(1);
               return !entry.empty() && IsTagNameStart(entry.front())
                   && std::ranges::all_of(entry, IsTagNameByte);
           });
}

ElementTable::ElementTable(const InLineTagSet& tags)
    : inLineTags(tags)
    , inLineNames(tags.elementNames())
    , wordNames(WordNames(tags))
    , textNames(TextElementNames(tags))
{
}

const ElementFacts* ElementTable::find(std::string_view name)
{
    std::size_t hash = name.size();
    for (const char c : name)
        hash = hash * 31 + static_cast<unsigned char>(c);
    for (std::size_t slot = hash % slots.size();; slot = (slot + 1) % slots.size()) {
        if (slots[slot] == nullptr) {
            if (known.size() >= slots.size() / 2)
                return nullptr;
            known.push_back(makeFacts(name));
            return slots[slot] = &known.back();
        }
        if (slots[slot]->name == name)
            return slots[slot];
    }
}

ElementFacts ElementTable::makeFacts(std::string_view name) const
{
    const auto contains = [name](const std::vector<std::string>& names) {
        return std::ranges::find(names, name) != names.end();
    };
    ElementFacts facts;
    facts.name = name;
    facts.isInLine = contains(inLineNames);
    facts.isInLineWord = contains(wordNames);
    facts.isText = contains(textNames);
    facts.describes = std::ranges::any_of(
        DescriptionNames,
        [lower = LowerCase(std::string(name))](std::string_view other) { return lower == other; });
    const std::string start = '<' + facts.name + '>';
    facts.startBefore = inLineTags.count(start);
    facts.endBefore = facts.endAfter = inLineTags.count("</" + facts.name + '>');
    facts.emptyBefore = facts.emptyAfter = inLineTags.count('<' + facts.name + "/>");
    facts.startAfter = facts.startBefore + (IsFieldTag(start) ? 1 : 0);
    return facts;
}

} // namespace vmk
