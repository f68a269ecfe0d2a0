#include "ResultFile.h"

#include "FileNames.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vmk {

ResultFile::ResultFile(const QString& name)
{
    const int handle = ::open(EncodeFileName(name).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (handle >= 0)
        file.reset(::fdopen(handle, "r+b"));
    // A device can be read without end.
    struct stat status = {};
    if (check(file && ::fstat(handle, &status) == 0) && !S_ISREG(status.st_mode)) {
        failure = u"is not a file"_s;
        file.reset();
    }
}

bool ResultFile::check(bool succeeded)
{
    if (!succeeded && failure.isEmpty())
        failure = QString::fromLocal8Bit(std::strerror(errno));
    return succeeded;
}

void ResultFile::fetch()
{
    if (isFetched || !file)
        return;
    char* text = nullptr;
    size_t room = 0;
    const ssize_t length = ::getdelim(&text, &room, '\n', file.get());
    line.assign(text, static_cast<size_t>(std::max<ssize_t>(length, 0)));
    std::free(text); // allocated by getdelim
    isComplete = line.ends_with('\n');
    if (isComplete)
        line.pop_back();
    else
        line.clear();
    isFetched = true;
}

std::vector<std::string> ResultFile::readWhile(const std::function<bool(std::string_view line)>& belongs)
{
    std::vector<std::string> lines;
    for (fetch(); isComplete && belongs(line); fetch()) {
        readTo += line.size() + 1;
        lines.push_back(std::move(line));
        isFetched = false;
    }
    return lines;
}

bool ResultFile::atEnd()
{
    fetch();
    return !isComplete;
}

const std::string& ResultFile::nextLine()
{
    fetch();
    return line;
}

bool ResultFile::cut(uint64_t position)
{
    isFetched = true;
    isComplete = false;
    line.clear();
    readTo = position;
    const auto offset = static_cast<off_t>(position);
    return check(file && std::fflush(file.get()) == 0 && ::ftruncate(::fileno(file.get()), offset) == 0
                 && ::fseeko(file.get(), offset, SEEK_SET) == 0);
}

bool ResultFile::append(std::string_view lines)
{
    return check(file && std::fwrite(lines.data(), 1, lines.size(), file.get()) == lines.size());
}

bool ResultFile::flush()
{
    return check(file && std::fflush(file.get()) == 0);
}

} // namespace vmk
