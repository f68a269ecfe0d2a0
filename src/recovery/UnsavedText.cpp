#include "UnsavedText.h"

#include "BookSeams.h"
#include "BookVariables.h"
#include "FileOperations.h"
#include "RecoveryFolder.h"
#include "SaveBook.h"
#include "SessionRecorder.h"
#include "StartUpVariables.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

SessionRecorder* TheRecorder = nullptr;

} // namespace

QString RecoveryFolder()
{
    return OfficeFolder + u"/Recovery"_s;
}

bool KeepUnsavedText()
{
    if (TheRecorder == nullptr || !TheRecorder->hasUnsavedText() || TheRecorder->isKept())
        return true;
    if (IsBookEmpty()) {
        TheRecorder->noteKept();
        return true;
    }
    std::string bytes;
    {
        // Nothing is asked: a text that the book's encoding cannot hold is kept in UTF-8.
        const SeamGuard missing(MissingCharactersSeam(),
                                [](const MissingCharacters&, const QString&) { return MissingAnswer::Utf8; });
        bytes = FileOfDisplayText(DisplayTextSeam()(AngleMarks::Restore)).bytes;
    }
    QString reason;
    const bool isInFile = ReadFileText(CurrentBook) == bytes;
    if (!isInFile && KeepUnsavedBook(RecoveryFolder(), CurrentBook, bytes, reason).isEmpty())
        return false;
    TheRecorder->noteKept();
    return true;
}

void NoteTextSaved(const QString& path)
{
    if (TheRecorder)
        TheRecorder->noteSaved(path);
}

void NoteBinaryPartChange()
{
    if (TheRecorder)
        TheRecorder->noteBinaryPartChange();
}

void SetRecorder(SessionRecorder* recorder)
{
    TheRecorder = recorder;
}

SessionRecorder* Recorder()
{
    return TheRecorder;
}

} // namespace vmk
