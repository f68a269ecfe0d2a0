#include "Progress.h"

#include "BookWalk.h"
#include "CollectionOptions.h"

#include <QString>

#include <cmath>
#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

QString Duration(double time)
{
    const auto whole = static_cast<qint64>(std::llround(time));
    constexpr qint64 Minute = 60;
    constexpr qint64 Hour = 60 * Minute;
    if (whole >= Hour)
        return u"%1 h %2 min"_s.arg(whole / Hour).arg(whole % Hour / Minute);
    return whole >= Minute ? u"%1 min %2 s"_s.arg(whole / Minute).arg(whole % Minute) : u"%1 s"_s.arg(whole);
}

} // namespace

Progress::Progress(const CollectionOptions& options)
    : isShown(::isatty(STDERR_FILENO) != 0 && !options.isOneBook())
    , sharesTerminal(isShown && ::isatty(STDOUT_FILENO) != 0)
{
    if (!isShown || options.listFile == u"-")
        return;
    counter = std::make_unique<WorkerProcesses>(1, [&options] {
        return [&options](std::string_view) {
            BookWalk walk(options.input());
            uint64_t books = 0;
            while (walk.next())
                ++books;
            return std::to_string(books);
        };
    });
    // Without another process, the count would delay the run.
    if (counter->isHere())
        counter.reset();
    else
        counter->submit(0, {});
}

Progress::~Progress()
{
    finish();
}

void Progress::show(uint64_t done)
{
    constexpr milliseconds Period(500);
    const Clock::time_point now = Clock::now();
    if (!isShown || now - shown < Period)
        return;
    shown = now;
    if (counter) {
        if (const auto result = counter->next(milliseconds(0))) {
            total = QString::fromStdString(result->bytes).toULongLong();
            counter.reset();
        }
    }
    const double time = std::chrono::duration<double>(now - start).count();
    const double rate = static_cast<double>(done) / time;
    QString line = total > 0 ? u"%1 of %2 books"_s.arg(done).arg(total) : u"%1 books"_s.arg(done);
    line += u", %1 a second"_s.arg(rate, 0, 'f', rate < 10 ? 1 : 0);
    if (total > done && rate > 0)
        line += u", %1 left"_s.arg(Duration(static_cast<double>(total - done) / rate));
    std::fprintf(stderr, "\r\033[K%s", qPrintable(line));
    std::fflush(stderr);
    hasLine = true;
}

void Progress::clear()
{
    if (!hasLine)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    hasLine = false;
}

void Progress::clearForOutput()
{
    if (sharesTerminal)
        clear();
}

void Progress::finish()
{
    clear();
    isShown = false;
    counter.reset();
}

} // namespace vmk
