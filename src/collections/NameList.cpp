#include "NameList.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace vmk {

namespace {

QString SystemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

void NameList::Closer::operator()(std::FILE* file) const
{
    if (file != stdin)
        std::fclose(file);
}

NameList::NameList(const std::string& file, char mark)
    : list(file == "-" ? stdin : std::fopen(file.c_str(), "rbe"))
    , separator(mark)
{
    if (!list)
        failure = SystemReason();
}

std::optional<std::string> NameList::next()
{
    char* line = nullptr;
    size_t room = 0;
    std::string path;
    while (list && path.empty()) {
        const ssize_t length = ::getdelim(&line, &room, separator, list.get());
        if (length < 0) {
            if (std::ferror(list.get()) != 0)
                failure = SystemReason();
            list.reset();
            break;
        }
        path.assign(line, static_cast<size_t>(length));
        if (path.ends_with(separator))
            path.pop_back();
    }
    std::free(line); // allocated by getdelim
    return path.empty() ? std::nullopt : std::optional(std::move(path));
}

} // namespace vmk
