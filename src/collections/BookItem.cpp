#include "BookItem.h"

#include "FileNames.h"
#include "FolderListing.h"
#include "StandardInput.h"

#include <cstring>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Writes and reads the fields of an item: numbers, and texts with their length before them.
class FieldWriter
{
public:
    void add(uint64_t number) { bytes.append(reinterpret_cast<const char*>(&number), sizeof number); }
    void add(std::string_view text)
    {
        add(uint64_t(text.size()));
        bytes += text;
    }
    [[nodiscard]] std::string take() { return std::move(bytes); }

private:
    std::string bytes;
};

class FieldReader
{
public:
    explicit FieldReader(std::string_view of)
        : bytes(of)
    {
    }

    uint64_t number()
    {
        uint64_t value = 0;
        if (bytes.size() < sizeof value)
            return 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        bytes.remove_prefix(sizeof value);
        return value;
    }
    std::string text()
    {
        const size_t length = std::min(static_cast<size_t>(number()), bytes.size());
        const std::string_view value = bytes.substr(0, length);
        bytes.remove_prefix(length);
        return std::string(value);
    }

private:
    std::string_view bytes;
};

} // namespace

FileContent BookItem::content() const
{
    if (path == "-")
        return ReadStandardInput();
    if (!packed)
        return ReadContentAt(path);
    FileContent content;
    std::optional<std::string> bytes = Unpack(*packed, &content.systemReason);
    if (bytes)
        content.bytes = *std::move(bytes);
    else
        content.outcome = ReadOutcome::Unreadable;
    return content;
}

std::string BookItem::toBytes() const
{
    FieldWriter writer;
    const QByteArray shownName = EncodeFileName(name);
    const QByteArray shownFailure = failure.toUtf8();
    writer.add(std::string_view(shownName.constData(), size_t(shownName.size())));
    writer.add(std::string_view(shownFailure.constData(), size_t(shownFailure.size())));
    writer.add(path);
    writer.add(output);
    writer.add(packed ? 1U : 0U);
    if (packed) {
        writer.add(static_cast<uint64_t>(packed->method));
        writer.add(packed->size);
        writer.add(uint64_t(packed->checksum));
        writer.add(packed->bytes);
    }
    return writer.take();
}

BookItem BookItem::ofBytes(std::string_view bytes)
{
    FieldReader reader(bytes);
    BookItem item;
    item.name = NameOfPath(reader.text());
    item.failure = QString::fromStdString(reader.text());
    item.path = reader.text();
    item.output = reader.text();
    if (reader.number() != 0) {
        item.packed.emplace();
        item.packed->method = static_cast<ZipMethod>(reader.number());
        item.packed->size = reader.number();
        item.packed->checksum = static_cast<uint32_t>(reader.number());
        item.packed->bytes = reader.text();
    }
    return item;
}

QString NameOfPath(const std::string& systemPath)
{
    return DecodeFileName(QByteArray::fromStdString(systemPath));
}

} // namespace vmk
