#pragma once

#include <QByteArray>

#include <cstdint>

/// Generated pages in the format of the display, for tests and benchmarks that need many lines or bytes.
namespace vmk::reference {

/// A small random number generator with the same numbers on every system.
class Dice
{
public:
    explicit Dice(std::uint64_t seed)
        : state(seed * 2862933555777941757ULL + 3037000493ULL)
    {
    }

    /// A number from 0 to `sides - 1`.
    int roll(int sides)
    {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return int((state >> 11) % std::uint64_t(sides));
    }

private:
    std::uint64_t state;
};

/// The page of a book of about `bytes` bytes: declaration, sections with titles, paragraphs of text with
/// some emphasis, links with painted attributes, margins by depth. Latin and Cyrillic words.
inline QByteArray makeBookPage(qsizetype bytes, std::uint64_t seed = 1)
{
    constexpr const char* Words[] = {"and",
                                     "the",
                                     "stone",
                                     "river",
                                     "night",
                                     "\xd0\xbd\xd0\xbe\xd1\x87\xd1\x8c",
                                     "\xd1\x80\xd0\xb5\xd0\xba\xd0\xb0",
                                     "\xd0\xba\xd0\xb0\xd0\xbc\xd0\xb5\xd0\xbd\xd1\x8c",
                                     "\xd0\xb3\xd0\xbe\xd1\x80\xd0\xbe\xd0\xb4",
                                     "house",
                                     "\xd0\xb4\xd0\xbe\xd0\xbc,",
                                     "who",
                                     "went",
                                     "home.",
                                     "\xd0\xb8",
                                     "\xe2\x80\x94",
                                     "&amp;",
                                     "\x7f",
                                     "upon",
                                     "of"};
    Dice dice(seed);
    QByteArray page
        = "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\"><HEAD>\r\n"
          "<STYLE>\r\nspan.t\t{color:blue;}\r\n</STYLE>\r\n</HEAD>"
          "<BODY STYLE=\"font-family:Verdana; font-size:14px\" text=\"black\" bgColor=\"white\">\r\n"
          "<DIV id=FirstDiv><SPAN class=t>&lt;?xml<FONT class=n> version=</FONT>"
          "<FONT class=v>\"1.0\"</FONT>?&gt;</SPAN></DIV>\r<DIV><SPAN class=t>&lt;FictionBook&gt;"
          "</SPAN></DIV>\r";
    page.reserve(bytes + 4096);
    while (page.size() < bytes) {
        page += "<DIV style=\"MARGIN-LEFT: " + QByteArray::number(5 + 5 * dice.roll(4)) + "px\">";
        page += "<SPAN class=t>&lt;p&gt;</SPAN>";
        const int words = 5 + dice.roll(120);
        for (int i = 0; i < words; ++i) {
            if (dice.roll(60) == 0)
                page += "<SPAN class=t>&lt;emphasis&gt;</SPAN>night<SPAN class=t>&lt;/emphasis&gt;</SPAN> ";
            if (dice.roll(200) == 0)
                page += "<SPAN class=t>&lt;a<FONT class=n> l:href=</FONT><FONT "
                        "class=v>\"#n1\"</FONT>&gt;</SPAN>";
            page += Words[dice.roll(int(std::size(Words)))];
            page += ' ';
        }
        page += "<SPAN class=t>&lt;/p&gt;</SPAN></DIV>\r";
    }
    page += "<DIV><SPAN class=t>&lt;/FictionBook&gt;</SPAN></DIV></BODY></HTML>";
    return page;
}

} // namespace vmk::reference
