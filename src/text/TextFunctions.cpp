#include "TextFunctions.h"

namespace vmk {

bool IsBlank(std::string_view text, bool countNbsp)
{
    constexpr std::string_view Nbsp = "&nbsp;";
    while (!text.empty()) {
        if (std::string_view("\t \r\n\xa0").find(text.front()) != std::string_view::npos)
            text.remove_prefix(1);
        else if (countNbsp && text.starts_with(Nbsp))
            text.remove_prefix(Nbsp.size());
        else
            return false;
    }
    return true;
}

} // namespace vmk
