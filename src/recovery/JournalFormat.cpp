#include "JournalFormat.h"

#include "Checksum.h"
#include "Compression.h"

#include <QSysInfo>

#include <cstring>

namespace vmk {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the texts of a journal are little-endian");

// ---------------------------------------------------------------- writing

void ByteWriter::number(std::uint64_t value)
{
    while (value >= 0x80) {
        text += static_cast<char>(value | 0x80U);
        value >>= 7U;
    }
    text += static_cast<char>(value);
}

void ByteWriter::fixed(std::uint64_t value, int byteCount)
{
    for (int i = 0; i < byteCount; ++i)
        text += static_cast<char>(value >> (8U * unsigned(i)));
}

void ByteWriter::string(std::string_view value)
{
    number(value.size());
    text += value;
}

void ByteWriter::string(QStringView value)
{
    number(std::size_t(value.size()) * sizeof(char16_t));
    text.append(reinterpret_cast<const char*>(value.utf16()), std::size_t(value.size()) * sizeof(char16_t));
}

void ByteWriter::line(const Line& line)
{
    number(line.block);
    string(line.text);
    marks(line.marks);
}

void ByteWriter::marks(std::span<const Mark> marks)
{
    number(marks.size());
    for (const Mark& mark : marks) {
        number(std::uint64_t(mark.pos));
        number(std::uint64_t(mark.tag) * 2 + mark.open);
    }
}

std::string MakeRecord(RecordKind kind, std::string payload, std::uint64_t& checksum)
{
    constexpr std::size_t ShortestPacked = 512;
    auto kindByte = static_cast<std::uint8_t>(kind);
    if (payload.size() >= ShortestPacked) {
        std::string packed = Compress(payload);
        if (!packed.empty() && packed.size() < payload.size()) {
            payload = std::move(packed);
            kindByte |= static_cast<std::uint8_t>(RecordKind::Packed);
        }
    }
    ByteWriter writer;
    writer.fixed(payload.size(), 4);
    std::string record = writer.take();
    record += static_cast<char>(kindByte);
    record += payload;
    checksum = Checksum(std::string_view(record).substr(4), checksum);
    ByteWriter end;
    end.fixed(checksum, 8);
    return record += end.bytes();
}

std::string EncodeFacts(const BookFacts& facts)
{
    ByteWriter writer;
    writer.string(facts.path);
    writer.fixed(std::uint64_t(facts.onDisk.bytes), 8);
    writer.fixed(std::uint64_t(facts.onDisk.modified), 8);
    writer.fixed(facts.onDisk.device, 8);
    writer.fixed(facts.onDisk.inode, 8);
    writer.fixed(facts.checksum, 8);
    writer.string(std::string_view(facts.pageFront.constData(), std::size_t(facts.pageFront.size())));
    writer.number(std::uint64_t(facts.binaryCodePage));
    writer.number(std::uint64_t(facts.workCodePage));
    writer.number(std::uint64_t(facts.fileCodePage));
    writer.number((facts.keepsText ? 1U : 0U) + (facts.hasCharRefs ? 2U : 0U));
    for (const std::string* text : {&facts.workEncodingName, &facts.workMetaTag, &facts.fileEncodingName,
                                    &facts.fileMetaTag, &facts.xmlDeclaration})
        writer.string(std::string_view(*text));
    return writer.take();
}

std::string EncodeTags(const std::vector<JournalTag>& tags)
{
    ByteWriter writer;
    writer.number(tags.size());
    for (const JournalTag& tag : tags) {
        writer.string(tag.name);
        writer.string(tag.attributes);
    }
    return writer.take();
}

void EncodeSelection(ByteWriter& writer, const Selection& selection)
{
    for (const Position& place : {selection.anchor, selection.focus}) {
        writer.number(std::uint64_t(place.line));
        writer.number(std::uint64_t(place.offset));
    }
}

// ---------------------------------------------------------------- reading

std::uint64_t ByteReader::number()
{
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64 && !rest.empty(); shift += 7) {
        const auto byte = static_cast<unsigned char>(rest.front());
        rest.remove_prefix(1);
        value |= std::uint64_t(byte & 0x7FU) << shift;
        if (byte < 0x80)
            return good ? value : 0;
    }
    fail();
    return 0;
}

int ByteReader::count(std::size_t most)
{
    constexpr std::uint64_t Largest = 0x7fffffff;
    const std::uint64_t value = number();
    if (value > most || value > Largest)
        fail();
    return good ? static_cast<int>(value) : 0;
}

std::uint64_t ByteReader::fixed(int byteCount)
{
    if (rest.size() < std::size_t(byteCount))
        fail();
    std::uint64_t value = 0;
    for (int i = 0; good && i < byteCount; ++i)
        value |= std::uint64_t(static_cast<unsigned char>(rest[std::size_t(i)])) << (8U * unsigned(i));
    if (good)
        rest.remove_prefix(std::size_t(byteCount));
    return value;
}

std::string_view ByteReader::bytes()
{
    const std::uint64_t size = number();
    if (size > rest.size())
        fail();
    if (!good)
        return {};
    const std::string_view value = rest.substr(0, static_cast<std::size_t>(size));
    rest.remove_prefix(value.size());
    return value;
}

QString ByteReader::string()
{
    const std::string_view value = bytes();
    QString text(qsizetype(value.size() / sizeof(char16_t)), Qt::Uninitialized);
    if (value.size() % sizeof(char16_t) != 0)
        fail();
    else if (!value.empty())
        std::memcpy(text.data(), value.data(), value.size());
    return good ? text : QString();
}

std::vector<Mark> ByteReader::marks()
{
    // Each mark has at least two bytes.
    const int size = count(rest.size() / 2);
    std::vector<Mark> result;
    result.reserve(std::size_t(size));
    for (int i = 0; i < size && good; ++i) {
        constexpr std::size_t Most = 0x7fffffff;
        const int pos = count(Most);
        const std::uint64_t tag = number();
        if (tag > 0xffffffffU)
            fail();
        result.push_back((tag & 1U) != 0 ? Mark::opening(pos, TagId(tag >> 1U))
                                         : Mark::closing(pos, TagId(tag >> 1U)));
    }
    return result;
}

Line ByteReader::line()
{
    constexpr std::size_t Most = 0x7fffffff;
    Line line;
    line.block = TagId(count(Most));
    line.text = string();
    line.marks = marks();
    return line;
}

BookFacts DecodeFacts(ByteReader& reader)
{
    constexpr std::size_t MostCodePage = 0xffff;
    BookFacts facts;
    facts.path = reader.string();
    facts.onDisk.bytes = qint64(reader.fixed(8));
    facts.onDisk.modified = qint64(reader.fixed(8));
    facts.onDisk.device = reader.fixed(8);
    facts.onDisk.inode = reader.fixed(8);
    facts.checksum = reader.fixed(8);
    const std::string_view front = reader.bytes();
    facts.pageFront = QByteArray(front.data(), qsizetype(front.size()));
    facts.binaryCodePage = reader.count(MostCodePage);
    facts.workCodePage = reader.count(MostCodePage);
    facts.fileCodePage = reader.count(MostCodePage);
    const std::uint64_t flags = reader.number();
    facts.keepsText = (flags & 1U) != 0;
    facts.hasCharRefs = (flags & 2U) != 0;
    for (std::string* text : {&facts.workEncodingName, &facts.workMetaTag, &facts.fileEncodingName,
                              &facts.fileMetaTag, &facts.xmlDeclaration})
        *text = reader.bytes();
    return facts;
}

std::vector<JournalTag> DecodeTags(ByteReader& reader)
{
    // Each tag has at least two bytes.
    const int size = reader.count(reader.left() / 2);
    std::vector<JournalTag> tags;
    for (int i = 0; i < size && reader.isGood(); ++i) {
        JournalTag tag;
        tag.name = reader.string();
        tag.attributes = reader.string();
        tags.push_back(std::move(tag));
    }
    return tags;
}

Selection DecodeSelection(ByteReader& reader)
{
    constexpr std::size_t Most = 0x7fffffff;
    Selection selection;
    for (Position* place : {&selection.anchor, &selection.focus}) {
        place->line = reader.count(Most);
        place->offset = reader.count(Most);
    }
    return selection;
}

} // namespace vmk
