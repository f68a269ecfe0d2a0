#pragma once

#include <string>
#include <string_view>

namespace vmk {

/// A small valid book whose only section contains `content`.
inline std::string SmallBook(std::string_view content = "<p>Text</p>")
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0" xmlns:l="http://www.w3.org/1999/xlink">
<description><title-info><genre>sf</genre><author><first-name>A</first-name><last-name>B</last-name></author>
<book-title>Title</book-title><lang>en</lang></title-info>
<document-info><author><nickname>n</nickname></author><date>2020</date><id>1</id><version>1.0</version>
</document-info></description>
<body><section>)"
        + std::string(content) + "</section></body></FictionBook>\n";
}

/// Well-formed, but with an element that is not in the schema.
inline std::string BookWithSchemaError()
{
    return SmallBook("<p>Text</p><chapter/>");
}

/// Not well-formed.
inline std::string BookWithOpenTag()
{
    return SmallBook("<p>Text");
}

} // namespace vmk
