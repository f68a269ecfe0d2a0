#include "XmlInput.h"

#include "CodePages.h"
#include "XmlError.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>

namespace vmk {

/// Converts the bytes of one encoding to UTF-8, piece by piece.
class XmlInput::Decoder
{
public:
    enum class End
    {
        OfInput,
        OfRoom,
        BadBytes
    };
    struct Step
    {
        size_t consumed;
        size_t produced;
        End end;
    };

    explicit Decoder(std::string encodingName)
        : name(std::move(encodingName))
    {
    }
    virtual ~Decoder() = default;
    /// Decodes whole characters from the beginning of `in` as long as they fit into `out`.
    [[nodiscard]] virtual Step decode(std::string_view in, char* out, size_t room) = 0;
    /// Resets to the state at the start of a text.
    virtual void reset() { }

    const std::string name;
};

namespace {

constexpr size_t PieceSize = 16'384;
constexpr size_t LongestCharacter = 8;
constexpr const char* NulReason = "A null character is not allowed in a text";

/// One byte per character.
class TableDecoder final : public XmlInput::Decoder
{
public:
    explicit TableDecoder(int codePage)
        : Decoder("windows-" + std::to_string(codePage))
    {
        for (int byte = 0; byte < 256; ++byte)
            put(table[static_cast<size_t>(byte)],
                CharacterOfByte(static_cast<unsigned char>(byte), codePage));
    }

    Step decode(std::string_view in, char* out, size_t room) override
    {
        size_t consumed = 0;
        size_t produced = 0;
        for (; consumed < in.size(); ++consumed) {
            const Utf8& character = table[static_cast<unsigned char>(in[consumed])];
            if (room - produced < character.length)
                return {consumed, produced, End::OfRoom};
            std::memcpy(out + produced, character.bytes, character.length);
            produced += character.length;
        }
        return {consumed, produced, End::OfInput};
    }

private:
    struct Utf8
    {
        unsigned char length;
        char bytes[3];
    };

    static void put(Utf8& entry, char16_t character)
    {
        const auto bits
            = [character](int shift) { return static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
        if (character < 0x80)
            entry = {1, {static_cast<char>(character), 0, 0}};
        else if (character < 0x800)
            entry = {2, {static_cast<char>(0xC0 | (character >> 6)), bits(0), 0}};
        else
            entry = {3, {static_cast<char>(0xE0 | (character >> 12)), bits(6), bits(0)}};
    }

    std::array<Utf8, 256> table{};
};

/// Any encoding that the C library supports.
class IconvDecoder final : public XmlInput::Decoder
{
public:
    explicit IconvDecoder(const std::string& encodingName)
        : Decoder(encodingName)
        , handle(iconv_open("UTF-8", encodingName.c_str()))
    {
    }
    ~IconvDecoder() override
    {
        if (isOpen())
            iconv_close(handle);
    }
    IconvDecoder(const IconvDecoder&) = delete;
    IconvDecoder& operator=(const IconvDecoder&) = delete;

    // iconv_open() returns the pointer -1 on failure.
    [[nodiscard]] bool isOpen() const { return reinterpret_cast<intptr_t>(handle) != -1; }

    Step decode(std::string_view in, char* out, size_t room) override
    {
        // iconv takes the text by a pointer to non-const, but does not write to it.
        char* from = const_cast<char*>(in.data());
        char* to = out;
        size_t left = in.size();
        size_t roomLeft = room;
        const size_t result = iconv(handle, &from, &left, &to, &roomLeft);
        const int problem = result == static_cast<size_t>(-1) ? errno : 0;
        const End end = problem == 0 ? End::OfInput : problem == E2BIG ? End::OfRoom : End::BadBytes;
        return {in.size() - left, room - roomLeft, end};
    }

    void reset() override { iconv(handle, nullptr, nullptr, nullptr, nullptr); }

private:
    iconv_t handle;
};

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower;
}

struct DeclaredEncoding
{
    std::string_view name;
    size_t at; // of the name in the text
};

/// The encoding named in the XML declaration at the start of a text in an ASCII-compatible encoding.
std::optional<DeclaredEncoding> FindDeclaredEncoding(std::string_view text)
{
    constexpr std::string_view Blanks = " \t\r\n";
    if (!text.starts_with("<?xml") || text.size() < 6 || Blanks.find(text[5]) == std::string_view::npos)
        return std::nullopt;
    // A declaration is ASCII only; anything after another byte is not part of one.
    std::string_view declaration = text.substr(0, std::min<size_t>(text.find("?>"), 4096));
    const auto isAscii = [](unsigned char c) { return c >= 0x09 && c < 0x80; };
    declaration = declaration.substr(
        0, static_cast<size_t>(std::ranges::find_if_not(declaration, isAscii) - declaration.begin()));
    size_t at = declaration.find("encoding");
    if (at == std::string_view::npos)
        return std::nullopt;
    const auto skipBlanks = [&] { at = declaration.find_first_not_of(Blanks, at); };
    at += 8;
    skipBlanks();
    if (at == std::string_view::npos || declaration[at] != '=')
        return std::nullopt;
    ++at;
    skipBlanks();
    if (at == std::string_view::npos || (declaration[at] != '"' && declaration[at] != '\''))
        return std::nullopt;
    const size_t end = declaration.find(declaration[at], at + 1);
    if (end == std::string_view::npos)
        return std::nullopt;
    return DeclaredEncoding{declaration.substr(at + 1, end - at - 1), at + 1};
}

/// True for a valid encoding name in the XML grammar; no other name is passed to iconv.
bool IsEncodingName(std::string_view name)
{
    const auto isPart
        = [](unsigned char c) { return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-'; };
    return !name.empty() && name.size() <= 40 && std::isalpha(static_cast<unsigned char>(name.front())) != 0
        && std::ranges::all_of(name, isPart);
}

/// Two or four bytes per character: a declaration in single bytes cannot be in one of these.
bool IsWide(std::string_view lowerName)
{
    static constexpr std::array<std::string_view, 7> Starts
        = {"utf-16", "utf16", "utf-32", "utf32", "ucs", "iso-10646-ucs", "unicode"};
    return std::ranges::any_of(Starts,
                               [lowerName](std::string_view start) { return lowerName.starts_with(start); });
}

} // namespace

XmlInput::XmlInput(std::string_view source, XmlEncoding encoding)
    : bytes(source)
{
    choose(encoding);
}

XmlInput::~XmlInput() = default;

void XmlInput::choose(XmlEncoding encoding)
{
    const auto dropMark = [this](std::string_view mark) {
        if (!bytes.starts_with(mark))
            return false;
        bytes.remove_prefix(mark.size());
        markBytes = static_cast<qsizetype>(mark.size());
        return true;
    };

    if (encoding.kind() == XmlEncoding::Kind::CodePage) {
        decoder = std::make_unique<TableDecoder>(encoding.number());
        return;
    }
    if (dropMark("\xEF\xBB\xBF") || encoding.kind() == XmlEncoding::Kind::Utf8)
        return;
    // The mark of UTF-32 begins with that of UTF-16.
    using namespace std::string_view_literals;
    if (dropMark("\xFF\xFE\0\0"sv))
        decoder = std::make_unique<IconvDecoder>("UTF-32LE");
    else if (dropMark("\0\0\xFE\xFF"sv))
        decoder = std::make_unique<IconvDecoder>("UTF-32BE");
    else if (dropMark("\xFF\xFE"sv) || bytes.starts_with("<\0"sv))
        decoder = std::make_unique<IconvDecoder>("UTF-16LE");
    else if (dropMark("\xFE\xFF"sv) || bytes.starts_with("\0<"sv))
        decoder = std::make_unique<IconvDecoder>("UTF-16BE");
    else
        chooseByDeclaration();
}

void XmlInput::chooseByDeclaration()
{
    const std::optional<DeclaredEncoding> declared = FindDeclaredEncoding(bytes);
    if (!declared)
        return;
    const std::string name = Lower(declared->name);
    if (name == "utf-8" || name == "utf8" || name == "us-ascii" || name == "ascii")
        return;
    for (const int page : {1250, 1251, 1252})
        if (name == "windows-" + std::to_string(page) || name == "cp" + std::to_string(page)) {
            decoder = std::make_unique<TableDecoder>(page);
            return;
        }
    if (IsEncodingName(name) && !IsWide(name)) {
        auto converter = std::make_unique<IconvDecoder>(std::string(declared->name));
        if (converter->isOpen()) {
            decoder = std::move(converter);
            return;
        }
    }
    const bool wide = IsWide(name);
    failed = Failure{XmlUnknownEncoding, static_cast<qsizetype>(declared->at),
                     "The declared encoding '" + std::string(declared->name.substr(0, 80))
                         + (wide ? "' does not match the text" : "' is not known")};
    stopped = true;
}

std::string XmlInput::encodingName() const
{
    return decoder ? Lower(decoder->name) : "utf-8";
}

XmlDecodedText DecodeXmlText(std::string_view bytes)
{
    XmlInput input(bytes, XmlEncoding::byDeclaration());
    XmlDecodedText decoded;
    if (input.failure())
        return decoded;
    decoded.encoding = input.encodingName();
    decoded.text.reserve(bytes.size() + bytes.size() / 2);
    std::array<char, PieceSize> piece;
    while (const qsizetype length = input.read(piece.data(), qsizetype(piece.size())))
        decoded.text.append(piece.data(), static_cast<size_t>(length));
    decoded.complete = !input.failure();
    return decoded;
}

qsizetype XmlInput::read(char* out, qsizetype capacity)
{
    if (stopped || capacity <= 0)
        return 0;
    const auto room = static_cast<size_t>(capacity);
    if (!decoder)
        return readUtf8(out, room);
    if (pendingStart == pending.size() && !refill())
        return 0;
    const size_t piece = std::min(room, pending.size() - pendingStart);
    std::memcpy(out, pending.data() + pendingStart, piece);
    pendingStart += piece;
    return static_cast<qsizetype>(piece);
}

qsizetype XmlInput::readUtf8(char* out, size_t room)
{
    if (consumed == produced) {
        // Each piece is validated as a whole; a character cut by its end waits for the next one.
        const std::string_view piece = bytes.substr(static_cast<size_t>(produced), PieceSize);
        // The parser would treat a character 0 as the end of the text.
        const size_t valid = std::min(ValidUtf8Prefix(piece), piece.find('\0'));
        produced += static_cast<qsizetype>(valid);
        if (valid == 0 && !piece.empty())
            failed = Failure{XmlBadCharacter, produced,
                             piece.front() == '\0' ? NulReason : "The bytes here are not valid UTF-8"};
    }
    const size_t length = std::min(room, static_cast<size_t>(produced - consumed));
    std::memcpy(out, bytes.data() + consumed, length);
    consumed += static_cast<qsizetype>(length);
    return static_cast<qsizetype>(length);
}

bool XmlInput::refill()
{
    if (stopAtNul) {
        failed = Failure{XmlBadCharacter, produced, NulReason};
        return false;
    }
    pending.resize(PieceSize);
    pendingStart = 0;
    const Decoder::Step step
        = decoder->decode(bytes.substr(static_cast<size_t>(consumed)), pending.data(), pending.size());
    pending.resize(step.produced);
    consumed += static_cast<qsizetype>(step.consumed);
    // The parser would treat a character 0 as the end of the text.
    const size_t nul = pending.find('\0');
    pending.resize(std::min(nul, pending.size()));
    produced += static_cast<qsizetype>(pending.size());
    // The text before the invalid byte is returned first.
    if (nul != std::string::npos)
        stopAtNul = true;
    if (pending.empty() && stopAtNul)
        failed = Failure{XmlBadCharacter, produced, NulReason};
    else if (step.produced == 0 && step.end == Decoder::End::BadBytes)
        failed = Failure{XmlBadCharacter, produced, "The bytes here are not valid " + decoder->name};
    return !pending.empty();
}

namespace {

/// The front of a text that is decoded again.
struct DecodedFront
{
    size_t consumed = 0; ///< bytes of the text
    size_t produced = 0; ///< bytes of UTF-8
};

/// Decodes up to byte `length` of UTF-8, piece by piece, for `take`. `front` is what was decoded before.
template <typename Take>
void DecodeFront(XmlInput::Decoder& decoder, std::string_view bytes, size_t length, DecodedFront& front,
                 Take take)
{
    std::array<char, PieceSize> piece;
    if (front.consumed == 0)
        decoder.reset();
    while (front.produced < length) {
        const size_t room = std::min(length - front.produced, piece.size());
        const XmlInput::Decoder::Step step = decoder.decode(bytes.substr(front.consumed), piece.data(), room);
        front.consumed += step.consumed;
        front.produced += step.produced;
        take(std::string_view(piece.data(), step.produced));
        if (step.end != XmlInput::Decoder::End::OfRoom
            || (step.produced == 0 && length - front.produced < LongestCharacter))
            break;
    }
}

/// Counts units, lines and columns of a UTF-8 text that arrives in pieces.
class PositionCounter
{
public:
    explicit PositionCounter(XmlPosition& place)
        : position(place)
    {
    }

    void count(std::string_view text)
    {
        if (text.empty())
            return;
        addSums(text.front(), afterCr ? '\r' : '\0');
        for (size_t at = 1; at < text.size(); at += BlockSize)
            addSums(text.data() + at, std::min(BlockSize, text.size() - at));
        afterCr = text.back() == '\r';

        // The column is counted only in the last line.
        if (const size_t lineEnd = text.find_last_of("\r\n"); lineEnd != std::string_view::npos) {
            position.linepos = 1;
            text.remove_prefix(lineEnd + 1);
        }
        position.linepos += static_cast<int>(std::ranges::count_if(text, IsCharacterStart));
    }

private:
    /// Sums of this size fit in a byte; such sums process many bytes in one instruction.
    static constexpr size_t BlockSize = 64;

    static bool IsCharacterStart(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }
    static bool IsCharacterOfTwoUnits(char c) { return static_cast<unsigned char>(c) >= 0xF0; }
    /// Line ends are counted at their first character: CR LF is one.
    static bool IsLineEnd(char c, char before) { return c == '\r' || (c == '\n' && before != '\r'); }

    void addSums(char c, char before)
    {
        position.filepos += (IsCharacterStart(c) ? 1 : 0) + (IsCharacterOfTwoUnits(c) ? 1 : 0);
        position.line += IsLineEnd(c, before) ? 1 : 0;
    }

    /// For bytes that have a predecessor.
    void addSums(const char* bytes, size_t count)
    {
        const char* const before = bytes - 1;
        uint8_t units = 0;
        uint8_t lineEnds = 0;
        for (size_t i = 0; i < count; ++i) {
            units += static_cast<uint8_t>(IsCharacterStart(bytes[i]));
            units += static_cast<uint8_t>(IsCharacterOfTwoUnits(bytes[i]));
            lineEnds += static_cast<uint8_t>((bytes[i] == '\r') | ((bytes[i] == '\n') & (before[i] != '\r')));
        }
        position.filepos += units;
        position.line += lineEnds;
    }

    XmlPosition& position;
    bool afterCr = false;
};

} // namespace

std::string_view XmlInput::prefix(qsizetype length, std::string& room) const
{
    const size_t limit = static_cast<size_t>(std::max<qsizetype>(length, 0));
    if (!decoder)
        return bytes.substr(0, limit);
    room.clear();
    DecodedFront front;
    DecodeFront(*decoder, bytes, limit, front, [&room](std::string_view piece) { room += piece; });
    return room;
}

XmlPosition XmlInput::locate(qsizetype offset) const
{
    return locate(std::span(&offset, 1)).front();
}

std::vector<XmlPosition> XmlInput::locate(std::span<const qsizetype> offsets) const
{
    std::vector<XmlPosition> positions;
    positions.reserve(offsets.size());
    XmlPosition position;
    PositionCounter counter(position);
    DecodedFront front;
    for (const qsizetype offset : offsets) {
        const size_t limit = static_cast<size_t>(std::max<qsizetype>(offset, 0));
        if (decoder) {
            DecodeFront(*decoder, bytes, limit, front,
                        [&counter](std::string_view piece) { counter.count(piece); });
        } else if (const size_t end = std::min(limit, bytes.size()); end > front.consumed) {
            counter.count(bytes.substr(front.consumed, end - front.consumed));
            front.consumed = end;
        }
        positions.push_back(position);
        positions.back().fileByte = static_cast<qsizetype>(front.consumed) + markBytes;
        positions.back().filepos += markBytes > 0 ? 1 : 0;
    }
    return positions;
}

} // namespace vmk
