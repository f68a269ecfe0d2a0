// Compares Base64 in both directions with the `base64` program of the GNU core utilities: the same 30 MB, in
// turns, in one run. The program reads a file and writes to /dev/null; its start counts, as for a caller.

#include "Base64.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr size_t DataSize = 30'000'000;
constexpr int Rounds = 15;
constexpr double RatioWanted = 2;

double Time(const std::function<bool()>& work, bool& good)
{
    const auto begin = std::chrono::steady_clock::now();
    good = work() && good;
    return Milliseconds(std::chrono::steady_clock::now() - begin).count();
}

double Median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

bool RunProgram(const QStringList& arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(QStringLiteral("base64"), arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

bool Write(const QString& path, const std::string& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly)
        && file.write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size());
}

/// Prints the figures of one direction; false if anything failed or the ratio is too small.
bool Compare(const char* name, const std::function<bool()>& own, const std::function<bool()>& program)
{
    bool good = true;
    std::vector<double> ownTimes;
    std::vector<double> programTimes;
    for (int round = 0; round < Rounds; ++round) {
        programTimes.push_back(Time(program, good));
        ownTimes.push_back(Time(own, good));
    }
    if (!good) {
        std::printf("%s: FAILED\n", name);
        return false;
    }
    const auto throughput = [](double time) { return static_cast<double>(DataSize) / 1000 / time; };
    const double ratio = Median(programTimes) / Median(ownTimes);
    std::printf("%s: vellumark %.1f ms (%.0f MB/s), coreutils %.1f ms (%.0f MB/s), %.2f times as fast "
                "(wanted: %.0f)\n",
                name, Median(ownTimes), throughput(Median(ownTimes)), Median(programTimes),
                throughput(Median(programTimes)), ratio, RatioWanted);
    return ratio >= RatioWanted;
}

} // namespace

int main()
{
    std::string data(DataSize, '\0');
    std::mt19937 random(1);
    for (char& byte : data)
        byte = static_cast<char>(random());
    const std::string text = vmk::Base64Encode(data);

    const QTemporaryDir folder;
    const QString dataFile = folder.filePath(QStringLiteral("data"));
    const QString textFile = folder.filePath(QStringLiteral("text"));
    if (!Write(dataFile, data) || !Write(textFile, text)) {
        std::fputs("cannot write the test files\n", stderr);
        return 2;
    }
    std::printf("30 MB of random bytes, medians of %d rounds taken in turn\n", Rounds);
    // The program does not wrap lines either.
    const bool encoded = Compare(
        "encode", [&data, &text] { return vmk::Base64Encode(data).size() == text.size(); },
        [&dataFile] {
            return RunProgram({QStringLiteral("-w0"), dataFile});
        });
    const bool decoded = Compare(
        "decode",
        [&data, &text] { return vmk::Base64Decode(text).value_or(std::string()).size() == data.size(); },
        [&textFile] {
            return RunProgram({QStringLiteral("-d"), textFile});
        });
    return encoded && decoded ? 0 : 1;
}
