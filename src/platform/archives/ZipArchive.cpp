#include "ZipArchive.h"

#include "FolderListing.h"
#include "MemberNames.h"

#include <zip.h>
#include <zlib.h>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

QString Damage(const QString& detail)
{
    return u"damaged archive: "_s + detail;
}

QString Damage(const zip_error_t* error)
{
    return Damage(QString::fromUtf8(zip_error_strerror(const_cast<zip_error_t*>(error))));
}

struct MemberCloser
{
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using MemberFile = std::unique_ptr<zip_file_t, MemberCloser>;

/// Reads `size` bytes, or fewer at the end of the member. The buffer grows with the bytes that exist, because
/// the size is the archive's word.
std::string ReadUpTo(zip_file_t* file, uint64_t size)
{
    constexpr uint64_t Step = 1 << 22;
    std::string bytes;
    while (bytes.size() < size) {
        const size_t before = bytes.size();
        const auto wanted = static_cast<size_t>(std::min(size - before, Step));
        bytes.resize(before + wanted);
        const zip_int64_t got = zip_fread(file, bytes.data() + before, wanted);
        bytes.resize(before + static_cast<size_t>(std::max<zip_int64_t>(got, 0)));
        if (got <= 0)
            break;
    }
    return bytes;
}

} // namespace

ZipArchive::ZipArchive(zip* opened, std::string ownedBytes)
    : bytes(std::move(ownedBytes))
    , handle(opened)
{
}

ZipArchive::~ZipArchive()
{
    if (handle != nullptr)
        zip_discard(handle);
}

std::unique_ptr<ZipArchive> ZipArchive::open(const std::string& systemPath, QString* problem)
{
    // The library takes an empty file for an archive without members.
    if (FileSizeAt(systemPath) == 0 && KindAt(systemPath) == FileKind::File) {
        *problem = Damage(u"the file is empty"_s);
        return nullptr;
    }
    int code = 0;
    zip_t* opened = zip_open(systemPath.c_str(), ZIP_RDONLY, &code);
    if (opened != nullptr)
        return std::unique_ptr<ZipArchive>(new ZipArchive(opened));
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    *problem = Damage(&error);
    zip_error_fini(&error);
    return nullptr;
}

std::unique_ptr<ZipArchive> ZipArchive::ofBytes(std::string content, QString* problem)
{
    if (content.empty()) {
        *problem = Damage(u"the file is empty"_s);
        return nullptr;
    }
    std::unique_ptr<ZipArchive> archive(new ZipArchive(nullptr, std::move(content)));
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(archive->bytes.data(), archive->bytes.size(), 0, &error);
    archive->handle = source == nullptr ? nullptr : zip_open_from_source(source, ZIP_RDONLY, &error);
    if (archive->handle == nullptr) {
        *problem = Damage(&error);
        zip_source_free(source);
        archive.reset();
    }
    zip_error_fini(&error);
    return archive;
}

uint64_t ZipArchive::count() const
{
    return static_cast<uint64_t>(std::max<zip_int64_t>(zip_get_num_entries(handle, 0), 0));
}

ZipMember ZipArchive::member(uint64_t index) const
{
    ZipMember member;
    zip_stat_t stat;
    if (zip_stat_index(handle, index, 0, &stat) == 0) {
        member.size = (stat.valid & ZIP_STAT_SIZE) != 0 ? stat.size : 0;
        member.packedSize = (stat.valid & ZIP_STAT_COMP_SIZE) != 0 ? stat.comp_size : 0;
        member.isEncrypted
            = (stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE;
    }
    // The library does not return the mark of UTF-8; by the letter of the standard it converts every name
    // without one.
    const auto nameIn = [this, index](zip_flags_t flags) {
        const char* name = zip_get_name(handle, index, flags);
        return std::string(name == nullptr ? "" : name);
    };
    const std::string stored = nameIn(ZIP_FL_ENC_RAW);
    member.name = MemberName(stored, nameIn(ZIP_FL_ENC_STRICT) == stored);
    // Programs of Windows and DOS also write the separator of their system.
    member.name.replace(u'\\', u'/');
    return member;
}

std::optional<PackedMember> ZipArchive::read(uint64_t index, QString* problem) const
{
    PackedMember packed;
    zip_stat_t stat;
    if (zip_stat_index(handle, index, 0, &stat) != 0) {
        *problem = Damage(zip_get_error(handle));
        return std::nullopt;
    }
    const bool isCommon = stat.comp_method == ZIP_CM_STORE || stat.comp_method == ZIP_CM_DEFLATE;
    const MemberFile file(zip_fopen_index(handle, index, isCommon ? ZIP_FL_COMPRESSED : 0));
    if (!file) {
        *problem = Damage(zip_get_error(handle));
        return std::nullopt;
    }
    packed.method = stat.comp_method == ZIP_CM_DEFLATE ? ZipMethod::Deflated : ZipMethod::Stored;
    packed.size = stat.size;
    packed.checksum = stat.crc;
    const uint64_t size = isCommon ? stat.comp_size : stat.size;
    packed.bytes = ReadUpTo(file.get(), size);
    if (packed.bytes.size() == size)
        return packed;
    *problem = Damage(u"the member is incomplete"_s);
    return std::nullopt;
}

namespace {

constexpr size_t LargestBlock = std::numeric_limits<uInt>::max() / 2;

/// Unpacks one member with zlib.
class Inflater
{
public:
    Inflater()
    {
        constexpr int WithoutHeader = -MAX_WBITS;
        isReady = inflateInit2(&stream, WithoutHeader) == Z_OK;
    }
    ~Inflater()
    {
        if (isReady)
            inflateEnd(&stream);
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    /// Returns at most `most` bytes; nothing if the data is damaged or not at its end after them.
    std::optional<std::string> unpack(std::string_view packed, uint64_t most)
    {
        constexpr uint64_t FirstBlock = 1 << 24;
        std::string out;
        // One byte more than the size, so that the decoder reports the end of the data.
        out.resize(static_cast<size_t>(std::min(most, FirstBlock)) + 1);
        size_t used = 0;
        int status = isReady ? Z_OK : Z_MEM_ERROR;
        while (status == Z_OK) {
            if (stream.avail_in == 0) {
                const size_t piece = std::min(packed.size(), LargestBlock);
                stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
                stream.avail_in = static_cast<uInt>(piece);
                packed.remove_prefix(piece);
            }
            if (used == out.size()) {
                if (used > most)
                    return std::nullopt;
                out.resize(static_cast<size_t>(std::min<uint64_t>(most, 2 * used)) + 1);
            }
            const size_t room = std::min(out.size() - used, LargestBlock);
            stream.next_out = reinterpret_cast<Bytef*>(out.data() + used);
            stream.avail_out = static_cast<uInt>(room);
            status = inflate(&stream, Z_NO_FLUSH);
            used += room - stream.avail_out;
        }
        out.resize(used);
        return status == Z_STREAM_END && used <= most ? std::optional(std::move(out)) : std::nullopt;
    }

private:
    z_stream stream = {};
    bool isReady = false;
};

uint32_t Checksum(std::string_view bytes)
{
    uLong sum = crc32(0, nullptr, 0);
    while (!bytes.empty()) {
        const size_t piece = std::min(bytes.size(), LargestBlock);
        sum = crc32(sum, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(piece));
        bytes.remove_prefix(piece);
    }
    return static_cast<uint32_t>(sum);
}

} // namespace

std::optional<std::string> Unpack(const PackedMember& member, QString* problem)
{
    std::optional<std::string> content;
    if (member.method == ZipMethod::Deflated)
        content = Inflater().unpack(member.bytes, member.size);
    else
        content = member.bytes;
    if (!content || content->size() != member.size) {
        *problem = Damage(u"the content of the member does not have its size"_s);
        return std::nullopt;
    }
    if (Checksum(*content) != member.checksum) {
        *problem = Damage(u"the content of the member does not have its checksum"_s);
        return std::nullopt;
    }
    return content;
}

} // namespace vmk
