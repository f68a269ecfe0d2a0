#include "ScratchFile.h"

#include "FileNames.h"

#include <fcntl.h>

namespace vmk {

ScratchFile::ScratchFile(const QString& path)
    : handle(OpenFile(EncodeFileName(path), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600))
{
}

} // namespace vmk
