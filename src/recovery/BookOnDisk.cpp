#include "BookOnDisk.h"

#include "Boxes.h"
#include "Checksum.h"
#include "FilePaths.h"
#include "Files.h"

using namespace Qt::StringLiterals;

namespace vmk {

BookOnDisk OpenBookOnDisk;

void NoteBookLoaded(const QString& path, const FileState& before, std::string_view bytes)
{
    OpenBookOnDisk = {path, before, Checksum(bytes), false};
}

void NoteBookSaved(const QString& path, std::string_view bytes)
{
    OpenBookOnDisk = {path, StateOfFile(path), Checksum(bytes), true};
}

bool WasChangedByOthers(const QString& path)
{
    if (path != OpenBookOnDisk.path)
        return false;
    const FileState now = StateOfFile(path);
    if (!now.exists() || now == OpenBookOnDisk.state)
        return false;
    const FileContent content = ReadContent(path);
    if (content.outcome != ReadOutcome::Ok || Checksum(content.bytes) != OpenBookOnDisk.checksum)
        return true;
    // Only the time has changed, or the file was copied back.
    OpenBookOnDisk.state = now;
    return false;
}

bool MayReplaceBook(const QString& path)
{
    if (!WasChangedByOthers(path))
        return true;
    const auto shown = [](const QDateTime& time) { return time.toString(u"dd.MM.yyyy HH:mm:ss"_s); };
    return YesNoBox(FileNameOf(path) + u" was changed by another program: "_s
                    + shown(StateOfFile(path).time()) + u"\r\nThe file that you "_s
                    + (OpenBookOnDisk.wasSaved ? u"saved"_s : u"loaded"_s) + u" is of: "_s
                    + shown(OpenBookOnDisk.state.time()) + u"\r\nDo you want to replace it?"_s);
}

} // namespace vmk
