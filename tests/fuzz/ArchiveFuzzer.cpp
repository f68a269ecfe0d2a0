// Any bytes as a zip archive. Members are read or refused with a reason, and the content of a member has the
// size that the archive states. No name of a member leads out of the folder of the results.

#include "OutputPaths.h"
#include "ZipArchive.h"

#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace Qt::StringLiterals;

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void CheckOutputPath(const QString& member)
{
    constexpr qsizetype LongestName = 255;
    const QString path = vmk::OutputPathOfMember(member);
    const QStringList parts = path.split(u'/');
    for (const QString& part : parts) {
        Require(!part.isEmpty() && part != u"." && part != u"..");
        Require(!part.contains(QChar(0)) && !part.contains(u'\\') && part.toUtf8().size() <= LongestName);
    }
    // The path of a result is a possible name of a member, and then has the same result.
    Require(vmk::OutputPathOfMember(path) == path);
}

void CheckMember(const vmk::ZipArchive& archive, std::uint64_t index)
{
    // A member in a rare compression is unpacked when it is read.
    constexpr std::uint64_t Largest = 1 << 22;
    const vmk::ZipMember member = archive.member(index);
    CheckOutputPath(member.name);
    if (member.size > Largest || member.isEncrypted)
        return;
    QString problem;
    const std::optional<vmk::PackedMember> packed = archive.read(index, &problem);
    Require(packed.has_value() != !problem.isEmpty());
    if (!packed)
        return;
    const std::optional<std::string> content = vmk::Unpack(*packed, &problem);
    Require(content ? content->size() == packed->size : !problem.isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    constexpr std::uint64_t MostMembers = 64;
    QString problem;
    const auto archive
        = vmk::ZipArchive::ofBytes(std::string(reinterpret_cast<const char*>(data), size), &problem);
    Require(archive ? problem.isEmpty() : !problem.isEmpty());
    for (std::uint64_t i = 0; archive && i < std::min(archive->count(), MostMembers); ++i)
        CheckMember(*archive, i);
    CheckOutputPath(QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)));
    return 0;
}
