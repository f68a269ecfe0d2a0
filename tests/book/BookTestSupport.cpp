#include "BookTestSupport.h"

#include <algorithm>

namespace vmk::test {

DisplayValues DefaultValues()
{
    DisplayValues values;
    values.fontName = "Verdana";
    values.fontSize = "10pt";
    values.fontWeight = "normal";
    values.textAlign = "left";
    values.leftMargin = "2px";
    values.rightMargin = "2px";
    values.foreColor = "#000000";
    values.backColor = "#F5F5F5";
    values.nodeShift = 5;
    values.tagColor = "#0000FF";
    values.attrNameColor = "#A52A2A";
    values.attrValColor = "#008000";
    values.tagFontWeight = "bold";
    values.tagHighlighting = true;
    values.showNbsp = true;
    return values;
}

QStringList ToList(const std::vector<std::string>& strings)
{
    QStringList list;
    for (const std::string& text : strings)
        list.append(QString::fromStdString(text));
    return list;
}

std::vector<std::string> ToStrings(const QStringList& list)
{
    std::vector<std::string> strings;
    for (const QString& text : list)
        strings.push_back(text.toStdString());
    return strings;
}

reference::DisplayValues ToReference(const DisplayValues& values)
{
    return {values.fontName,      values.fontSize,        values.fontWeight,    values.textAlign,
            values.leftMargin,    values.rightMargin,     values.foreColor,     values.backColor,
            values.nodeShift,     values.tagColor,        values.attrNameColor, values.attrValColor,
            values.tagFontWeight, values.tagHighlighting, values.showNbsp};
}

/// What `TextMaker::soup` combines.
const std::vector<std::string> SoupPieces = {"<p>",
                                             "</p>",
                                             "<strong>",
                                             "</strong>",
                                             "<emphasis>",
                                             "</emphasis>",
                                             "<a l:href=\"#n1\">",
                                             "</a>",
                                             "<image/>",
                                             "<image l:href=\"#i.jpg\"/>",
                                             "<section id=\"a\">",
                                             "</section>",
                                             "<date value=\"1\">",
                                             "</date>",
                                             "<id>",
                                             "<lang>",
                                             "<first-name>",
                                             "</first-name>",
                                             "</>",
                                             "</x/>",
                                             "<!--",
                                             "-->",
                                             "<!-- c -->",
                                             "<!-- a > b -->",
                                             "<?xml version=\"1.0\"?>",
                                             "<?XML VERSION='1'?>",
                                             "<![CDATA[",
                                             "]]>",
                                             "<?pi x?>",
                                             "<!DOCTYPE b>",
                                             " ",
                                             "  ",
                                             "\t",
                                             "\t\t",
                                             "\r",
                                             "\n",
                                             "\r\n",
                                             "\r\n\t\t",
                                             "&lt;",
                                             "&gt;",
                                             "&amp;",
                                             "&nbsp;",
                                             "&#1090;",
                                             "&#x442;",
                                             "&",
                                             ";",
                                             "&l",
                                             "t;",
                                             "\"",
                                             "'",
                                             "=",
                                             " id=\"x\"",
                                             " id=\"",
                                             ":href=\"y\"",
                                             " xmlns=\"u\"",
                                             " xmlns:l=\"",
                                             " title=\"t\"",
                                             " name=\"",
                                             " number=\"1\"",
                                             "  id=\"x\"",
                                             "<",
                                             ">",
                                             "/",
                                             "/>",
                                             "><",
                                             "> <",
                                             "\x01",
                                             "\x02",
                                             "\x03",
                                             "\x04",
                                             "\x7f",
                                             "\xc2\xa0",
                                             "\xe2\x80\xb9",
                                             "\xe2\x80\xba",
                                             "\xe2\x80",
                                             "\xb9",
                                             "\xd0\xa0",
                                             "\xd1\x82",
                                             "word",
                                             "a",
                                             "0",
                                             "<binary id=\"b\">",
                                             "</binary>",
                                             "</FictionBook>",
                                             "<DIV>",
                                             "</DIV>",
                                             "<DIV></DIV>",
                                             "<FONT>",
                                             "</FONT>"};

std::string TextMaker::soup()
{
    std::string result;
    const size_t count = 1 + below(40);
    for (size_t i = 0; i < count; ++i)
        result += piece(SoupPieces);
    return result;
}

std::string TextMaker::value()
{
    static const std::vector<std::string> pieces = {
        "x",     " ",    "  ",    "\t",     "\n",       "\r\n",     "/>",  ">",    "'",    "&quot;",  "&lt;",
        "&amp;", "&#9;", "&#10;", "&#160;", "&#x2014;", "\xd1\x82", "#n1", " id=", "&gt;", "\xc2\xa0"};
    std::string result;
    for (size_t i = below(4); i > 0; --i)
        result += piece(pieces);
    return result;
}

std::string TextMaker::text()
{
    static const std::vector<std::string> pieces = {"word",
                                                    " ",
                                                    " ",
                                                    "  ",
                                                    "\t",
                                                    "\n",
                                                    "\r\n",
                                                    "\n\n",
                                                    "&lt;",
                                                    "&gt;",
                                                    "&amp;",
                                                    "&#1090;",
                                                    "&#x5d0;",
                                                    "&#160;",
                                                    "&#32;",
                                                    "&#13;",
                                                    "&#10;",
                                                    "&#9;",
                                                    "&#62;",
                                                    "&#60;",
                                                    "\xd1\x82\xd0\xa0",
                                                    "\xc2\xa0",
                                                    "\xe2\x80\xb9",
                                                    "\"",
                                                    " id=\"x\"",
                                                    " name=\"",
                                                    ">",
                                                    "/>",
                                                    "\x7f",
                                                    "'",
                                                    "&#13;&#10;&#9;"};
    std::string result;
    for (size_t i = below(5); i > 0; --i)
        result += piece(pieces);
    return result;
}

std::string TextMaker::element(int depth)
{
    static const std::vector<std::string> names = {
        "p", "p", "section", "title", "strong", "emphasis", "a", "sup", "code", "image", "date", "id", "x:y"};
    static const std::vector<std::string> attributes
        = {"id", "l:href", "type", "version", "value", "name", "number", "title", "xml:lang"};
    static const std::vector<std::string> gaps = {"", "", " ", "\n", "\r\n  ", "\t", " \n "};
    const std::string name = piece(names);
    std::string result = "<" + name;
    const size_t first = below(attributes.size());
    for (size_t i = 0; i < below(4); ++i) {
        const std::string quote = below(4) == 0 ? "'" : "\"";
        const std::string content = value();
        const bool usable = quote == "\"" || content.find('\'') == std::string::npos;
        result += piece({" ", " ", "  ", " \n"}) + attributes[(first + i) % attributes.size()]
            + piece({"=", "=", " = "}) + (usable ? quote + content + quote : "\"\"");
    }
    if (below(6) == 0)
        return result + piece({"/>", " />"});
    result += piece({">", ">", " >"});
    const size_t count = depth > 4 ? 0 : below(5);
    for (size_t i = 0; i < count; ++i) {
        result += piece(gaps);
        switch (below(8)) {
        case 0:
            result += "<!-- c" + piece({"", " > ", "\n", " <p> ", " id=\"", "  "}) + " -->";
            break;
        case 1:
            result += "<![CDATA[" + piece({"", "x", "<p>", " &lt; ", "\n", "<!--", "<?xml version=\"1.0\"?>"})
                + "]]>" + piece({"x", "x ", "<p/>"}); // a tree joins adjacent sections
            break;
        case 2:
            result += "<?pi" + piece({"", " data", " id=\"x\"", " <!-- "}) + "?>";
            break;
        case 3:
        case 4:
            result += text();
            break;
        default:
            result += element(depth + 1);
        }
    }
    return result + piece(gaps) + text() + "</" + name + piece({">", ">", " >", "\n>"});
}

std::string TextMaker::book()
{
    std::string result
        = piece({"<?xml version=\"1.0\"?>", "<?xml version=\"1.0\" encoding=\"utf-8\"?>",
                 "<?xml version='1.0' standalone='yes'?>", "", "\xef\xbb\xbf<?xml version=\"1.0\"?>"});
    result += piece({"\n", "", "\r\n"});
    result += piece({"", "", "<!-- top -->", "<?xml-stylesheet href=\"a\"?>\n", "<!DOCTYPE FictionBook>\n",
                     "<!DOCTYPE FictionBook [<!ENTITY e \"<p>x</p>\">\n]>"});
    result += "<FictionBook xmlns=\"u\" xmlns:l=\"v\" xmlns:x=\"w\">" + piece({"", "\n"});
    for (size_t i = below(4); i > 0; --i)
        result += element(0) + piece({"", "\n", " "});
    return result + "</FictionBook>" + piece({"", "\n", "<!-- end -->"});
}

/// What `TextMaker::page` combines.
const std::vector<std::string> PagePieces = {"<DIV>",
                                             "</DIV>\r\n",
                                             "</DIV>\r",
                                             "<DIV style=\"MARGIN-LEFT: 5px\">",
                                             "<SPAN class=t>&lt;p&gt;</SPAN>",
                                             "<SPAN class=t>&lt;/p&gt;</SPAN>",
                                             "&lt;section&gt;",
                                             "&lt;/section&gt;",
                                             "&lt;image/&gt;",
                                             "<B>&lt;",
                                             "&gt;</B>",
                                             "&lt;strong&gt;",
                                             "&lt;/strong&gt;",
                                             "&lt;",
                                             "&gt;",
                                             "&amp;",
                                             "&nbsp;",
                                             "&n",
                                             "bsp;",
                                             "&l",
                                             "t;",
                                             "&g",
                                             "<B>",
                                             "</B>",
                                             "<FONT class=n> id=</FONT>",
                                             "\"x\"",
                                             " ",
                                             "  ",
                                             "\r\n",
                                             " \r\n",
                                             "\t",
                                             "\x7f",
                                             "\xc2\xa0",
                                             "\xa0",
                                             "\xe2\x80\xb9",
                                             "\xe2\x80\xba",
                                             "\xe2",
                                             "\x80",
                                             "\xb9",
                                             "\xba",
                                             "\xd0\xa0",
                                             "word",
                                             "&lt;?xml version=\"1.0\"?&gt;",
                                             "<?xml version=\"1.0\"?>",
                                             "&lt;!-- c --&gt;",
                                             "</HEAD>",
                                             "</head>",
                                             "&lt;/FictionBook&gt;",
                                             "&lt;FictionBook&gt;",
                                             "<",
                                             ">",
                                             "x",
                                             "\xe2\x80<B>",
                                             "\r",
                                             "\n"};

std::string TextMaker::page()
{
    std::string result = piece({"<HTML><HEAD>x</HEAD><BODY>\r\n", "<HTML><BODY>", ""});
    const size_t count = 1 + below(40);
    for (size_t i = 0; i < count; ++i)
        result += piece(PagePieces);
    return result + piece({"</BODY></HTML>", ""});
}

std::string Difference(const std::string& got, const std::string& expected)
{
    const auto [a, b] = std::mismatch(got.begin(), got.end(), expected.begin(), expected.end());
    if (a == got.end() && b == expected.end())
        return {};
    const auto at = static_cast<size_t>(a - got.begin());
    const size_t from = at < 80 ? 0 : at - 80;
    return "differ at " + std::to_string(at) + "\n  got:      " + got.substr(from, 200)
        + "\n  expected: " + expected.substr(from, 200);
}

} // namespace vmk::test
