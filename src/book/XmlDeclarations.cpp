#include "XmlDeclarations.h"

#include "TextFunctions.h"

namespace vmk {

size_t FindXmlDeclaration(std::string_view text, size_t from)
{
    for (size_t at = text.find("<?", from); at != std::string_view::npos; at = text.find("<?", at + 2))
        if (FindText(text.substr(at, XmlDeclarationStart.size()), XmlDeclarationStart, 0, true) == 0)
            return at;
    return std::string_view::npos;
}

void DropBeforeDeclaration(std::string& text)
{
    const size_t firstTag = text.find('<');
    if (firstTag != std::string::npos
        && text.compare(firstTag, XmlDeclarationStart.size(), XmlDeclarationStart) == 0)
        text.erase(0, firstTag);
}

std::string ReplaceXmlDeclarations(std::string text, size_t from, std::string_view declaration)
{
    size_t at = FindXmlDeclaration(text, from);
    if (at == std::string::npos)
        return text;
    std::string result;
    size_t copied = 0;
    for (; at != std::string::npos; at = FindXmlDeclaration(text, copied)) {
        const size_t end = text.find('>', at);
        if (end == std::string::npos)
            break;
        result.append(text, copied, at - copied);
        result += declaration;
        copied = end + 1;
    }
    result.append(text, copied);
    return result;
}

} // namespace vmk
