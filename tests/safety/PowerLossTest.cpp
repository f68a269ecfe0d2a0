#include "BookVersions.h"
#include "FilePaths.h"
#include "Files.h"
#include "SessionFixture.h"
#include "SystemCalls.h"

#include <map>
#include <random>
#include <set>

/// What is on the disk if the power fails after any of the writes of a save or of a journal.
///
/// The calls are recorded and replayed on a model of a disk: the entries of folders reach the disk in their
/// order, at any time, at the latest with the next flush of the folder; the content of a file reaches it with
/// the flush of the file, and before that not at all, partly, or completely.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using calls::Call;

/// The files of a folder by their paths, after a power loss.
using Disk = std::map<std::string, std::string>;

class DiskModel
{
public:
    explicit DiskModel(const Disk& before)
    {
        for (const auto& [path, content] : before) {
            const std::uint64_t file = ~std::uint64_t(entries.size());
            names[path] = file;
            entries.push_back({Call::Create, file, path, {}, {}, 0});
            flushed[file] = written[file] = content;
        }
        safeEntries = entries.size();
    }
    /// Gives an existing file the number that the recorded calls know it by.
    void setNumber(const std::string& path, std::uint64_t file)
    {
        for (Call& entry : entries) {
            if (entry.path == path)
                entry.file = file;
        }
        flushed[file] = written[file] = written[names[path]];
        names[path] = file;
    }

    void take(Call call)
    {
        // The system gives the number of a removed file to a new one.
        if (call.kind == Call::Create)
            ids[call.file] = (std::uint64_t(1) << 60U) + entries.size();
        if (const auto known = ids.find(call.file); known != ids.end())
            call.file = known->second;
        switch (call.kind) {
        case Call::Write:
            written[call.file] += call.data;
            break;
        case Call::Truncate:
            written[call.file].resize(call.length);
            break;
        case Call::SyncFile:
            flushed[call.file] = written[call.file];
            break;
        case Call::SyncFolder:
            safeEntries = entries.size();
            break;
        case Call::Create:
        case Call::Link:
        case Call::Rename:
        case Call::Unlink:
            entries.push_back(call);
            break;
        }
    }

    /// Every state that a power loss may leave now.
    [[nodiscard]] std::set<Disk> states() const
    {
        std::set<Disk> found;
        for (std::size_t count = safeEntries; count <= entries.size(); ++count) {
            for (const int part : {0, 1, 2})
                found.insert(stateWith(count, part));
        }
        return found;
    }

private:
    [[nodiscard]] Disk stateWith(std::size_t count, int part) const
    {
        std::map<std::string, std::uint64_t> folder;
        for (std::size_t i = 0; i < count; ++i) {
            const Call& entry = entries[i];
            if (entry.kind == Call::Create) {
                folder[entry.path] = entry.file;
            } else if (entry.kind == Call::Link) {
                folder[entry.other] = entry.file;
            } else if (entry.kind == Call::Rename) {
                folder[entry.other] = folder[entry.path];
                folder.erase(entry.path);
            } else {
                folder.erase(entry.path);
            }
        }
        Disk disk;
        for (const auto& [path, file] : folder)
            disk[path] = content(file, part);
        return disk;
    }

    /// \param part  0: only what is flushed; 1: also half of the rest; 2: all
    [[nodiscard]] std::string content(std::uint64_t file, int part) const
    {
        const auto valueOf = [file](const std::map<std::uint64_t, std::string>& values) {
            const auto found = values.find(file);
            return found == values.end() ? std::string() : found->second;
        };
        std::string safe = valueOf(flushed);
        const std::string all = valueOf(written);
        if (part == 0 || all.size() < safe.size())
            return safe;
        return all.substr(0, part == 2 ? all.size() : (safe.size() + all.size() + 1) / 2);
    }

    std::vector<Call> entries;
    std::size_t safeEntries = 0;
    std::map<std::string, std::uint64_t> names;
    std::map<std::uint64_t, std::uint64_t> ids; ///< of created files, by their numbers
    std::map<std::uint64_t, std::string> flushed;
    std::map<std::uint64_t, std::string> written;
};

TEST(PowerLoss, DuringASaveLeavesTheOldOrTheNewBookAndWholeVersions)
{
    for (const bool isLinked : {true, false}) {
        const Workplace place;
        const QString book = place.Path(u"book.fb2"_s);
        const QString backup = place.Path(u"Backup"_s);
        const std::string before(5'000, 'o');
        const std::string after(7'000, 'n');
        place.Make(u"book.fb2"_s, before);
        if (!isLinked) {
            ASSERT_EQ(::link(qPrintable(book), qPrintable(place.Path(u"second name"_s))), 0);
        }
        const std::uint64_t number = StateOfFile(book).inode;

        calls::Begin({place.Folder().toStdString(), {}});
        ASSERT_TRUE(KeepVersion(backup, book).isSafe);
        ASSERT_TRUE(ReplaceContent(book, after));
        calls::End();
        const std::vector<Call>& recorded = calls::Recorded();
        ASSERT_GE(recorded.size(), 5U);

        DiskModel model(Disk{{book.toStdString(), before}});
        model.setNumber(book.toStdString(), number);
        std::size_t states = 0;
        for (std::size_t i = 0; i <= recorded.size(); ++i) {
            for (const Disk& disk : model.states()) {
                ++states;
                const auto found = disk.find(book.toStdString());
                ASSERT_NE(found, disk.end()) << i;
                EXPECT_TRUE(found->second == before || found->second == after) << i;
                bool hasVersion = false;
                for (const auto& [path, content] : disk)
                    hasVersion = hasVersion || (path.ends_with(".version") && content == before);
                // No version is lost: the old book is the book, or a version.
                EXPECT_TRUE(found->second == before || hasVersion) << i;
            }
            if (i < recorded.size())
                model.take(recorded[i]);
        }
        EXPECT_GT(states, recorded.size());
    }
}

TEST(PowerLoss, DuringASessionLeavesAStateNotOlderThanTheLastFlush)
{
    const Workplace place;
    Session session(place);
    // The pages by the number of calls after which they are flushed.
    std::vector<std::pair<std::size_t, QByteArray>> flushed;
    std::vector<QByteArray> pages;
    std::mt19937 random(1); // NOLINT: the same text in each run
    calls::Begin({session.folder.toStdString(), {}});
    for (int i = 0; i < 40; ++i) {
        // Some texts are long and not compressible, so that the journal needs another base.
        QString text;
        for (int length = i % 8 == 7 ? 12'000 : 3; length > 0; --length)
            text += QChar(char16_t(0x4e00 + random() % 0x5000));
        session.type({2, 5}, text);
        pages.push_back(session.document.savePage());
        flushed.emplace_back(calls::Recorded().size(), pages.back());
    }
    calls::End();
    const std::vector<Call>& recorded = calls::Recorded();
    // More than one base was written.
    EXPECT_GT(std::ranges::count(recorded, Call::Rename, &Call::kind), 1);

    DiskModel model(Disk{});
    for (std::size_t i = 0; i <= recorded.size(); ++i) {
        std::size_t oldest = 0;
        while (oldest < flushed.size() && flushed[oldest].first <= i)
            ++oldest;
        for (const Disk& disk : model.states()) {
            QByteArray page;
            for (const auto& [path, content] : disk) {
                if (path.ends_with(".journal"))
                    page = RecoveredPage(content);
            }
            const auto found = std::ranges::find(pages, page);
            if (oldest == 0) {
                EXPECT_TRUE(page.isEmpty() || found != pages.end()) << i;
            } else {
                EXPECT_FALSE(page.isEmpty()) << i;
                EXPECT_GE(found - pages.begin(), std::ptrdiff_t(oldest) - 1) << i;
            }
            EXPECT_TRUE(page.isEmpty() || found != pages.end()) << i;
        }
        if (i < recorded.size())
            model.take(recorded[i]);
    }
}

} // namespace
} // namespace vmk
