// The cost of the recording of edits: a key typed into books of 1, 4 and 16 MB without a recorder and with
// one, including the event loop that passes the edit to the journal's thread. Prints microseconds of the
// user's thread per key (median and 99th percentile), the difference of the medians, and the cost of the
// first key, which begins the journal.

#include "BookVariables.h"
#include "DisplayDocument.h"
#include "SessionRecorder.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

namespace {

using namespace vmk;

double ThreadMicroseconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

QByteArray PageOfBytes(int bytes)
{
    QByteArray page = "<HTML><BODY>\r\n";
    for (int i = 0; page.size() < bytes; ++i)
        page += "<DIV style=\"MARGIN-LEFT: 15px\"><SPAN class=t>&lt;p&gt;</SPAN>Line " + QByteArray::number(i)
            + QByteArray(300, 'x') + "<SPAN class=t>&lt;/p&gt;</SPAN></DIV>\r";
    return page + "</BODY></HTML>";
}

struct KeyCost
{
    double first = 0;
    double median = 0;
    double most = 0;
};

KeyCost Type(DisplayDocument& document)
{
    constexpr int Keys = 2'000;
    std::vector<double> costs;
    const Position middle{document.lineCount() / 2, 20};
    document.setSelection(middle, middle);
    for (int i = 0; i < Keys; ++i) {
        const double begin = ThreadMicroseconds();
        document.typeText(QStringLiteral("a"));
        QCoreApplication::processEvents();
        costs.push_back(ThreadMicroseconds() - begin);
    }
    KeyCost cost;
    cost.first = costs.front();
    std::sort(costs.begin(), costs.end());
    cost.median = costs[costs.size() / 2];
    cost.most = costs[costs.size() * 99 / 100];
    return cost;
}

} // namespace

int main(int count, char** values)
{
    const QCoreApplication application(count, values);
    const QTemporaryDir folder;
    std::puts(
        "   MB   first key   with   |   median    with   difference   |   99 %    with   (microseconds)");
    for (const int megabytes : {1, 4, 16}) {
        const QByteArray page = PageOfBytes(megabytes << 20);
        DisplayDocument plain;
        plain.loadPage(page);
        const KeyCost without = Type(plain);
        DisplayDocument recorded;
        SessionRecorder recorder(recorded, folder.path() + QStringLiteral("/Recovery"), {});
        recorded.loadPage(page);
        const KeyCost with = Type(recorded);
        std::printf("%5d %11.1f %6.1f   | %8.1f %7.1f %12.1f   | %6.1f %7.1f\n", megabytes, without.first,
                    with.first, without.median, with.median, with.median - without.median, without.most,
                    with.most);
    }
    return 0;
}
