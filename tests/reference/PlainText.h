#pragma once

#include <cstddef>
#include <string>

/// The helpers on byte strings in their plainest form, without regard to speed.
namespace vmk::reference {

inline char Small(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

inline bool IsAt(const std::string& text, size_t at, const std::string& sought, bool ignoreCase)
{
    if (at + sought.size() > text.size())
        return false;
    for (size_t i = 0; i < sought.size(); ++i) {
        const char a = text[at + i];
        const char b = sought[i];
        if (ignoreCase ? Small(a) != Small(b) : a != b)
            return false;
    }
    return true;
}

inline std::string ReplaceAll(const std::string& text, const std::string& sought,
                              const std::string& replacement, bool ignoreCase = false)
{
    if (sought.empty())
        return text;
    std::string result;
    for (size_t at = 0; at < text.size();) {
        if (IsAt(text, at, sought, ignoreCase)) {
            result += replacement;
            at += sought.size();
        } else {
            result += text[at];
            ++at;
        }
    }
    return result;
}

inline std::string CollapseRepeats(std::string text, const std::string& unit, const std::string& separator,
                                   bool ignoreCase = false)
{
    for (;;) {
        const std::string changed = ReplaceAll(text, unit + separator + unit, unit, ignoreCase);
        if (changed.size() == text.size())
            return changed;
        text = changed;
    }
}

inline size_t CountOccurrences(const std::string& text, const std::string& sought, bool ignoreCase = false)
{
    if (sought.empty())
        return 0;
    return (text.size() - ReplaceAll(text, sought, "", ignoreCase).size()) / sought.size();
}

inline bool IsBlank(std::string text, bool countNbsp)
{
    for (const char blank : {'\x09', '\x20', '\x0d', '\x0a', '\xa0'})
        text = ReplaceAll(text, std::string(1, blank), "");
    if (countNbsp)
        text = ReplaceAll(text, "&nbsp;", "");
    return text.empty();
}

} // namespace vmk::reference
