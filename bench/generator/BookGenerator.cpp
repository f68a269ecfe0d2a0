#include "BookGenerator.h"

#include "Chance.h"
#include "CodePages.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <array>
#include <functional>

namespace vmk {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// ---------------------------------------------------------------- words

constexpr std::array CyrillicWords = {"и"sv,
                                      "в"sv,
                                      "не"sv,
                                      "на"sv,
                                      "он"sv,
                                      "что"sv,
                                      "с"sv,
                                      "как"sv,
                                      "это"sv,
                                      "по"sv,
                                      "но"sv,
                                      "вечер"sv,
                                      "дорога"sv,
                                      "окно"sv,
                                      "говорил"sv,
                                      "старый"sv,
                                      "берег"sv,
                                      "лошадь"sv,
                                      "письмо"sv,
                                      "далеко"sv,
                                      "медленно"sv,
                                      "человек"sv,
                                      "снег"sv,
                                      "чемодан"sv,
                                      "станция"sv,
                                      "подъезд"sv,
                                      "объяснил"sv,
                                      "ёлка"sv,
                                      "мельница"sv,
                                      "жаловаться"sv,
                                      "путешественник"sv,
                                      "воспоминание"sv,
                                      "разговаривали"sv,
                                      "необыкновенный"sv,
                                      "щука"sv,
                                      "эхо"sv,
                                      "юный"sv,
                                      "цапля"sv,
                                      "фонарь"sv};
constexpr std::array LatinWords
    = {"the"sv,    "of"sv,      "and"sv,       "house"sv,   "river"sv,      "quietly"sv, "evening"sv,
       "letter"sv, "naïve"sv,   "remember"sv,  "journey"sv, "window"sv,     "Straße"sv,  "schön"sv,
       "Übung"sv,  "über"sv,    "öffnen"sv,    "garçon"sv,  "été"sv,        "little"sv,  "thought"sv,
       "lamp"sv,   "between"sv, "wonderful"sv, "snow"sv,    "travelling"sv, "yellow"sv};
constexpr std::array CzechWords
    = {"a"sv,   "na"sv,    "dům"sv,  "řeka"sv,   "večer"sv,  "příběh"sv, "žlutý"sv, "šťastný"sv,
       "kůň"sv, "dopis"sv, "okno"sv, "daleko"sv, "člověk"sv, "světlo"sv, "ďábel"sv};
constexpr std::array Genres
    = {"sf"sv,          "det_classic"sv, "prose_classic"sv, "poetry"sv,         "adventure"sv,
       "sci_history"sv, "children"sv,    "humor_prose"sv,   "nonf_biography"sv, "unrecognised"sv};
constexpr std::array FirstNames = {"Анна"sv, "Пётр"sv, "Мария"sv, "John"sv, "Ødegård"sv, "Илья"sv};
constexpr std::array LastNames = {"Речной"sv, "Калинина"sv, "Smith-Jones"sv, "Щукин"sv, "Müller"sv};
constexpr std::array PlainMarks = {"strong"sv, "emphasis"sv, "strikethrough"sv, "sub"sv, "sup"sv, "sup"sv};
constexpr std::array Marks = {"strong"sv, "emphasis"sv, "strikethrough"sv, "sub"sv, "sup"sv, "code"sv};
constexpr std::array Aligns = {"left"sv, "right"sv, "center"sv};
constexpr std::array VerticalAligns = {"top"sv, "middle"sv, "bottom"sv};
constexpr std::array Permissions = {"require"sv, "allow"sv, "deny"sv};

// ---------------------------------------------------------------- pictures

void AppendBigEndian(QByteArray& bytes, uint32_t number)
{
    for (const int shift : {24, 16, 8, 0})
        bytes.append(static_cast<char>(number >> shift));
}

uint32_t Crc32(const QByteArray& bytes)
{
    uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

void AppendChunk(QByteArray& png, const QByteArray& typeAndData)
{
    AppendBigEndian(png, static_cast<uint32_t>(typeAndData.size() - 4));
    png += typeAndData;
    AppendBigEndian(png, Crc32(typeAndData));
}

/// A grey picture of noise in the PNG format, about `size` bytes long.
QByteArray MakePng(Chance& chance, int size)
{
    constexpr int Width = 64;
    const int height = std::max(1, size / (Width + 1));
    QByteArray pixels;
    for (int row = 0; row < height; ++row) {
        pixels.append('\0'); // no filter
        for (int column = 0; column < Width; ++column)
            pixels.append(static_cast<char>(chance.next()));
    }
    QByteArray header("IHDR");
    AppendBigEndian(header, Width);
    AppendBigEndian(header, static_cast<uint32_t>(height));
    header.append("\x08\0\0\0\0", 5); // 8 bits of grey
    QByteArray png("\x89PNG\r\n\x1a\n");
    AppendChunk(png, header);
    AppendChunk(png, "IDAT" + qCompress(pixels).mid(4)); // the first four bytes are the toolkit's own
    AppendChunk(png, "IEND");
    return png;
}

// ---------------------------------------------------------------- the book

/// The text with its first letter, Latin or Cyrillic, as a capital.
std::string Capitalised(const std::string& text)
{
    const qsizetype letterBytes = static_cast<unsigned char>(text.front()) < 0x80 ? 1 : 2;
    const QString letter = QString::fromUtf8(text.data(), letterBytes).toUpper();
    return letter.toStdString() + text.substr(static_cast<size_t>(letterBytes));
}

/// Writes one book, in UTF-8 with "\n" at the end of each line.
class BookWriter
{
public:
    BookWriter(const BookPlan& bookPlan, size_t textSize)
        : plan(bookPlan)
        , chance(bookPlan.seed * 0x1000003ULL + 17)
        , cyrillicShare(bookPlan.encoding == "windows-1250" || bookPlan.encoding == "windows-1252" ? 1 : 75)
        , wantedSize(textSize)
    {
    }

    std::string write();

private:
    // Parts of a line.
    std::string word();
    std::string words(int low, int high);
    std::string sentence();
    std::string inLine(int depth, bool insideLink);
    std::string link();
    std::string line(int sentences);
    std::string langSometimes();
    std::string idSometimes();
    std::string picture() { return "#picture" + std::to_string(chance.between(1, pictureCount)) + ".png"; }

    // Complete lines.
    void put(std::string_view text) { book.append(static_cast<size_t>(indent), ' ').append(text) += '\n'; }
    void field(std::string_view name, std::string_view text);
    void block(std::string_view startTag, const std::function<void()>& content);
    void sometimes(int percent, const std::function<void()>& content);
    void repeat(int low, int high, const std::function<void()>& content);

    void stylesheet();
    void description();
    void titleInfo(std::string_view name);
    void documentInfo();
    void publishInfo();
    void output();
    void author(std::string_view name);
    void sequence(int depth);
    void date();

    void mainBody();
    void notesBody();
    void part(int depth);
    void chapter();
    void textBlock();
    void textBlocksOnce();
    void paragraph();
    void title();
    void epigraph();
    void annotation(std::string_view name);
    void cite();
    void poem();
    void stanza();
    void table();
    void cell();
    void blockImage();
    void binaries();

    const BookPlan& plan;
    Chance chance;
    int cyrillicShare; // percent of the sentences
    size_t wantedSize;
    std::string book;
    int indent = 0;
    int nextId = 0;
    int notes = 0;
    int pictureCount = 3;
};

std::string BookWriter::word()
{
    if (chance.percent(cyrillicShare))
        return std::string(chance.oneOf(CyrillicWords));
    return std::string(plan.encoding == "windows-1250" ? chance.oneOf(CzechWords) : chance.oneOf(LatinWords));
}

std::string BookWriter::words(int low, int high)
{
    // One language per phrase.
    const int share = std::exchange(cyrillicShare, chance.percent(cyrillicShare) ? 100 : 0);
    std::string text = word();
    for (int count = chance.between(low, high) - 1; count > 0; --count)
        text += (chance.percent(8) ? ", " : " ") + word();
    cyrillicShare = share;
    return text;
}

std::string BookWriter::sentence()
{
    constexpr std::array Ends = {". "sv, ". "sv, ". "sv, "! "sv, "? "sv, "… "sv, " — "sv, "; "sv};
    constexpr std::array Extras
        = {" «кавычки»"sv, " “quotes”"sv,  " &amp; Co"sv, " &lt;1812&gt;"sv, " № 5"sv, "\u00A0%"sv,
           " x&#178;"sv,   " 1941–1945"sv, " ©"sv};
    std::string text = Capitalised(words(3, 18));
    if (chance.percent(6))
        text += chance.oneOf(Extras);
    return text.append(chance.oneOf(Ends));
}

std::string BookWriter::link()
{
    if (chance.percent(70)) {
        ++notes;
        return "<a l:href=\"#note" + std::to_string(notes) + "\" type=\"note\">[" + std::to_string(notes)
            + "]</a>";
    }
    return "<a l:href=\"http://example.org/page?n=" + std::to_string(chance.between(1, 999)) + "&amp;x=1\">"
        + inLine(1, true) + "</a>";
}

/// A few words, with or without in-line elements.
std::string BookWriter::inLine(int depth, bool insideLink)
{
    const int kind = chance.between(1, 20);
    if (depth > 3 || kind <= 8 || (!plan.movable && depth > 0))
        return words(1, 5);
    if (kind == 9 && plan.movable)
        return "<image l:href=\"" + picture() + "\" alt=\"" + words(1, 2) + "\"/>";
    if (kind <= 12 && !insideLink)
        return link();
    if (kind == 13)
        return "<style name=\"own\">" + inLine(depth + 1, insideLink) + "</style>";
    const std::string name(chance.percent(70) ? chance.oneOf(std::array{"strong"sv, "emphasis"sv})
                                              : chance.oneOf(plan.movable ? Marks : PlainMarks));
    return "<" + name + (insideLink ? "" : langSometimes()) + ">" + inLine(depth + 1, insideLink) + "</"
        + name + ">";
}

std::string BookWriter::line(int sentences)
{
    std::string text;
    for (int count = sentences; count > 0; --count) {
        text += sentence();
        if (chance.percent(12))
            text += inLine(0, false) + " ";
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string BookWriter::langSometimes()
{
    return chance.percent(2) ? " xml:lang=\"en\"" : "";
}

std::string BookWriter::idSometimes()
{
    return chance.percent(4) ? " id=\"id" + std::to_string(++nextId) + "\"" : "";
}

void BookWriter::field(std::string_view name, std::string_view text)
{
    const std::string tag(name);
    put("<" + tag + ">" + std::string(text) + "</" + tag + ">");
}

void BookWriter::block(std::string_view startTag, const std::function<void()>& content)
{
    put("<" + std::string(startTag) + ">");
    ++indent;
    content();
    --indent;
    put("</" + std::string(startTag.substr(0, startTag.find(' '))) + ">");
}

void BookWriter::sometimes(int percent, const std::function<void()>& content)
{
    if (chance.percent(percent))
        content();
}

void BookWriter::repeat(int low, int high, const std::function<void()>& content)
{
    for (int count = chance.between(low, high); count > 0; --count)
        content();
}

// ---------------------------------------------------------------- the description

void BookWriter::stylesheet()
{
    put("<stylesheet type=\"text/css\">.own { color: #a00; }</stylesheet>");
}

void BookWriter::description()
{
    block("description", [this] {
        titleInfo("title-info");
        sometimes(40, [this] { titleInfo("src-title-info"); });
        documentInfo();
        sometimes(80, [this] { publishInfo(); });
        repeat(0, 2, [this] { put("<custom-info info-type=\"note\">" + sentence() + "</custom-info>"); });
        repeat(0, 2, [this] { output(); });
    });
}

void BookWriter::titleInfo(std::string_view name)
{
    block(name, [this] {
        repeat(1, 3, [this] {
            const std::string match
                = chance.percent(30) ? " match=\"" + std::to_string(chance.between(1, 100)) + "\"" : "";
            put("<genre" + match + ">" + std::string(chance.oneOf(Genres)) + "</genre>");
        });
        repeat(1, 2, [this] { author("author"); });
        put("<book-title" + langSometimes() + ">" + words(2, 5) + "</book-title>");
        sometimes(70, [this] { annotation("annotation"); });
        sometimes(50, [this] { field("keywords", words(1, 4)); });
        sometimes(50, [this] { date(); });
        sometimes(60, [this] { put("<coverpage><image l:href=\"" + picture() + "\"/></coverpage>"); });
        field("lang", "ru");
        sometimes(30, [this] { field("src-lang", "en"); });
        sometimes(30, [this] { author("translator"); });
        sometimes(40, [this] { sequence(0); });
    });
}

void BookWriter::documentInfo()
{
    block("document-info", [this] {
        author("author");
        field("program-used", "make_book");
        date();
        repeat(0, 2,
               [this] { field("src-url", "http://example.org/" + std::to_string(chance.between(1, 99))); });
        sometimes(40, [this] { field("src-ocr", words(1, 2)); });
        field("id", "made-" + std::to_string(plan.seed));
        field("version", "1." + std::to_string(chance.between(0, 9)));
        sometimes(50, [this] { annotation("history"); });
        sometimes(20, [this] { author("publisher"); });
    });
}

void BookWriter::publishInfo()
{
    block("publish-info", [this] {
        sometimes(80, [this] { field("book-name", words(2, 4)); });
        sometimes(80, [this] { field("publisher", words(1, 2)); });
        sometimes(80, [this] { field("city", words(1, 1)); });
        sometimes(80, [this] { field("year", std::to_string(chance.between(1700, 2030))); });
        sometimes(80,
                  [this] { field("isbn", "5-" + std::to_string(chance.between(10000, 99999)) + "-001-X"); });
        sometimes(30, [this] { sequence(0); });
    });
}

void BookWriter::output()
{
    const auto permission = [this] { return std::string(chance.oneOf(Permissions)); };
    const auto part = [this, permission] {
        put("<part l:href=\"#all\" l:type=\"simple\" include=\"" + permission() + "\"/>");
    };
    block("output mode=\"paid\" include-all=\"" + permission() + "\" price=\"1.50\" currency=\"USD\"", [&] {
        repeat(0, 2, part);
        sometimes(50, [&] {
            block("output-document-class name=\"sample\" create=\"" + permission() + "\" price=\"0\"", part);
        });
    });
}

void BookWriter::author(std::string_view name)
{
    block(name, [this] {
        if (chance.percent(85)) {
            field("first-name", chance.oneOf(FirstNames));
            sometimes(30, [this] { field("middle-name", chance.oneOf(FirstNames)); });
            field("last-name", chance.oneOf(LastNames));
            sometimes(20, [this] { field("nickname", word()); });
        } else {
            field("nickname", word());
        }
        sometimes(20, [this] { field("home-page", "http://example.org/"); });
        sometimes(20, [this] { field("email", "reader@example.org"); });
        sometimes(20, [this] { field("id", "person-" + std::to_string(chance.between(1, 999))); });
    });
}

void BookWriter::sequence(int depth)
{
    std::string tag = "sequence name=\"" + words(1, 3) + "\"";
    if (chance.percent(60))
        tag += " number=\"" + std::to_string(chance.between(1, 40)) + "\"";
    if (depth == 0 && chance.percent(30))
        block(tag, [this] { sequence(1); });
    else
        put("<" + tag + "/>");
}

void BookWriter::date()
{
    const std::string year = std::to_string(chance.between(1800, 2025));
    if (chance.percent(60))
        put("<date value=\"" + year + "-0" + std::to_string(chance.between(1, 9)) + "-"
            + std::to_string(chance.between(10, 28)) + "\">" + year + "</date>");
    else
        field("date", year);
}

// ---------------------------------------------------------------- the text

void BookWriter::mainBody()
{
    block("body", [this] {
        sometimes(30, [this] { blockImage(); });
        title();
        sometimes(50, [this] { epigraph(); });
        block("section id=\"all\"", [this] { textBlocksOnce(); });
        while (book.size() < wantedSize)
            part(0);
    });
}

/// A part that contains parts, or a chapter.
void BookWriter::part(int depth)
{
    if (depth >= 3 || chance.percent(30)) {
        chapter();
        return;
    }
    block("section" + idSometimes() + langSometimes(), [this, depth] {
        title();
        sometimes(10, [this] { epigraph(); });
        sometimes(10, [this] { blockImage(); });
        sometimes(10, [this] { annotation("annotation"); });
        const int parts = chance.between(1, 5);
        for (int i = 0; i < parts && (i == 0 || book.size() < wantedSize); ++i)
            part(depth + 1);
    });
}

void BookWriter::chapter()
{
    block("section" + idSometimes(), [this] {
        sometimes(90, [this] { title(); });
        sometimes(10, [this] { epigraph(); });
        sometimes(10, [this] { blockImage(); });
        sometimes(10, [this] { annotation("annotation"); });
        paragraph();
        const int blocks = chance.between(0, 60);
        for (int i = 0; i < blocks && book.size() < wantedSize; ++i)
            textBlock();
    });
}

void BookWriter::textBlock()
{
    const int kind = chance.between(1, 100);
    if (kind <= 86)
        paragraph();
    else if (kind <= 89)
        put("<empty-line/>");
    else if (kind <= 91)
        put("<subtitle" + idSometimes() + ">" + words(1, 5) + "</subtitle>");
    else if (kind <= 94)
        cite();
    else if (kind <= 97)
        poem();
    else if (kind <= 98)
        table();
    else
        blockImage();
}

/// One element of each kind, so that every book has all of them.
void BookWriter::textBlocksOnce()
{
    title();
    epigraph();
    blockImage();
    annotation("annotation");
    paragraph();
    poem();
    put("<subtitle style=\"own\">" + words(1, 5) + "</subtitle>");
    cite();
    put("<empty-line/>");
    table();
    std::string marked;
    for (const std::string_view mark : plan.movable ? Marks : PlainMarks) {
        const std::string name(mark);
        marked += "<" + name + ">" + words(1, 3) + "</" + name + "> ";
    }
    put("<p>" + marked + "<style name=\"own\">" + word() + "</style>" + link() + "</p>");
}

void BookWriter::paragraph()
{
    const std::string style = chance.percent(2) ? " style=\"own\"" : "";
    // Most paragraphs are one or two lines of dialogue, some are long.
    const int sentences = chance.percent(60) ? chance.between(1, 3) : chance.between(3, 14);
    put("<p" + idSometimes() + style + langSometimes() + ">" + line(sentences) + "</p>");
}

void BookWriter::title()
{
    block("title", [this] {
        put("<p>" + words(1, 5) + "</p>");
        sometimes(10, [this] { put("<empty-line/>"); });
        sometimes(20, [this] { put("<p>" + line(1) + "</p>"); });
    });
}

void BookWriter::epigraph()
{
    block("epigraph" + idSometimes(), [this] {
        repeat(1, 2, [this] { paragraph(); });
        sometimes(20, [this] { poem(); });
        sometimes(20, [this] { cite(); });
        sometimes(70, [this] { put("<text-author>" + words(1, 3) + "</text-author>"); });
    });
}

void BookWriter::annotation(std::string_view name)
{
    block(std::string(name) + idSometimes(), [this] {
        repeat(1, 3, [this] { paragraph(); });
        sometimes(10, [this] { put("<subtitle>" + words(1, 3) + "</subtitle>"); });
        sometimes(10, [this] { put("<empty-line/>"); });
    });
}

void BookWriter::cite()
{
    block("cite" + idSometimes() + langSometimes(), [this] {
        repeat(1, 4, [this] { paragraph(); });
        sometimes(10, [this] { put("<subtitle>" + words(1, 3) + "</subtitle>"); });
        sometimes(50, [this] { put("<text-author>" + words(1, 3) + "</text-author>"); });
    });
}

void BookWriter::poem()
{
    block("poem" + idSometimes(), [this] {
        sometimes(40, [this] { title(); });
        repeat(1, 4, [this] { stanza(); });
        sometimes(40, [this] { put("<text-author>" + words(1, 3) + "</text-author>"); });
        sometimes(30, [this] { date(); });
    });
}

void BookWriter::stanza()
{
    block("stanza", [this] {
        sometimes(5, [this] { title(); });
        sometimes(5, [this] { put("<subtitle>" + words(1, 3) + "</subtitle>"); });
        repeat(2, 8, [this] { put("<v" + idSometimes() + ">" + words(3, 7) + "</v>"); });
    });
}

void BookWriter::table()
{
    block("table" + idSometimes() + " style=\"wide\"", [this] {
        repeat(1, 6, [this] {
            block("tr align=\"" + std::string(chance.oneOf(Aligns)) + "\"",
                  [this] { repeat(1, 5, [this] { cell(); }); });
        });
    });
}

void BookWriter::cell()
{
    const std::string name = chance.percent(30) ? "th" : "td";
    std::string attributes = idSometimes();
    if (chance.percent(10))
        attributes += " colspan=\"2\" rowspan=\"1\"";
    if (chance.percent(20))
        attributes += " align=\"" + std::string(chance.oneOf(Aligns)) + "\"";
    if (chance.percent(20))
        attributes += " valign=\"" + std::string(chance.oneOf(VerticalAligns)) + "\"";
    put("<" + name + attributes + ">" + (plan.movable ? inLine(0, false) : words(1, 5)) + "</" + name + ">");
}

void BookWriter::blockImage()
{
    put("<image l:href=\"" + picture() + "\" alt=\"" + words(1, 2) + "\" title=\"" + words(1, 3) + "\""
        + idSometimes() + "/>");
}

void BookWriter::notesBody()
{
    if (notes == 0)
        return;
    block("body name=\"notes\"", [this] {
        title();
        const int count = notes;
        for (int note = 1; note <= count; ++note)
            block("section id=\"note" + std::to_string(note) + "\"", [this, note] {
                put("<title><p>" + std::to_string(note) + "</p></title>");
                put("<p>" + sentence() + "</p>");
            });
    });
}

void BookWriter::binaries()
{
    const size_t share = std::max<size_t>(plan.size / 8, 600);
    for (int number = 1; number <= pictureCount; ++number) {
        const int bytes = static_cast<int>(share / 4 * 3 / static_cast<size_t>(pictureCount));
        const QByteArray text = MakePng(chance, bytes).toBase64();
        book += "<binary id=\"picture" + std::to_string(number) + ".png\" content-type=\"image/png\">";
        for (qsizetype at = 0; at < text.size(); at += 76)
            book.append("\n").append(text.mid(at, 76).toStdString());
        book += "\n</binary>\n";
    }
}

std::string BookWriter::write()
{
    book = "<?xml version=\"1.0\" encoding=\"" + plan.encoding + "\"?>\n";
    book += "<!-- made by make_book -->\n";
    book += "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\" "
            "xmlns:l=\"http://www.w3.org/1999/xlink\">\n";
    stylesheet();
    description();
    mainBody();
    notesBody();
    if (plan.pictures)
        binaries();
    book += "</FictionBook>\n";
    return std::move(book);
}

// ---------------------------------------------------------------- encodings

int CodePageOf(const std::string& encoding)
{
    for (const int page : {CodePageCentralEurope, CodePageCyrillic, CodePageWestern})
        if (encoding == "windows-" + std::to_string(page))
            return page;
    return encoding == "utf-16" ? CodePageUtf16 : CodePageUtf8;
}

/// The text in a code page; missing characters are decimal references.
std::string ToCodePage(const std::string& utf8, int page)
{
    std::string bytes;
    for (const char32_t character : QString::fromStdString(utf8).toStdU32String()) {
        if (const auto byte = ByteOfCharacter(character, page))
            bytes += static_cast<char>(*byte);
        else
            bytes += "&#" + std::to_string(static_cast<uint32_t>(character)) + ";";
    }
    return bytes;
}

std::string Encode(const std::string& utf8, const std::string& encoding)
{
    const int page = CodePageOf(encoding);
    if (page == CodePageUtf8)
        return utf8;
    if (page == CodePageUtf16)
        return "\xFF\xFE" + EncodeText(QString::fromStdString(utf8), page);
    return ToCodePage(utf8, page);
}

void ReplaceLineEnds(std::string& text, const std::string& lineEnd)
{
    std::string result;
    result.reserve(text.size() + text.size() / 32);
    for (const char c : text)
        c == '\n' ? result += lineEnd : result += c;
    text = std::move(result);
}

} // namespace

bool IsBookEncoding(const std::string& encoding)
{
    return encoding == "utf-8" || CodePageOf(encoding) != CodePageUtf8;
}

std::string MakeBook(const BookPlan& plan)
{
    // Notes and pictures follow the text that this limits; Cyrillic text has half the size in a code page.
    const size_t pictures = plan.pictures ? plan.size / 8 : 0;
    const double growth = plan.encoding == "windows-1251" ? 1.7 : plan.encoding == "utf-16" ? 0.8 : 1.0;
    const auto textSize = static_cast<size_t>(static_cast<double>(plan.size - pictures) * growth * 0.95);
    std::string book = BookWriter(plan, textSize).write();
    if (plan.lineEnd != "\n")
        ReplaceLineEnds(book, plan.lineEnd);
    return Encode(book, plan.encoding);
}

} // namespace vmk
