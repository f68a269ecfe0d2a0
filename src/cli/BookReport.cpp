#include "BookReport.h"

#include "CommandLine.h"
#include "FileNames.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

BookReport* current = nullptr; // of the book that this process handles

/// The names in a line keep their bytes.
std::string LineBytes(const QString& line)
{
    const QByteArray bytes = EncodeFileName(line);
    return ((bytes.isEmpty() ? line.toUtf8() : bytes) + '\n').toStdString();
}

void Write(std::FILE* stream, std::string_view bytes)
{
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

void Add(std::string& bytes, std::string_view text)
{
    const uint64_t length = text.size();
    bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
    bytes += text;
}

std::string Take(std::string_view& bytes)
{
    uint64_t length = 0;
    if (bytes.size() < sizeof length)
        return {};
    std::memcpy(&length, bytes.data(), sizeof length);
    bytes.remove_prefix(sizeof length);
    std::string text(bytes.substr(0, static_cast<size_t>(length)));
    bytes.remove_prefix(text.size());
    return text;
}

} // namespace

std::string BookReport::toBytes() const
{
    std::string bytes(1, static_cast<char>(code));
    Add(bytes, output);
    Add(bytes, errors);
    Add(bytes, failure);
    for (const std::string& kind : kinds)
        Add(bytes, "k" + kind);
    for (const std::string& notice : notices)
        Add(bytes, "n" + notice);
    return bytes;
}

BookReport BookReport::ofBytes(std::string_view bytes)
{
    BookReport report;
    if (bytes.empty())
        return report;
    report.code = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    report.output = Take(bytes);
    report.errors = Take(bytes);
    report.failure = Take(bytes);
    while (!bytes.empty()) {
        const std::string text = Take(bytes);
        (text.starts_with('k') ? report.kinds : report.notices).push_back(text.substr(1));
    }
    return report;
}

ReportCapture::ReportCapture(BookReport& report)
    : before(std::exchange(current, &report))
{
}

ReportCapture::~ReportCapture()
{
    current = before;
}

void PrintLine(const QString& line)
{
    if (current != nullptr)
        current->output += LineBytes(line);
    else
        Write(stdout, LineBytes(line));
}

void PrintErrorLine(const QString& line)
{
    if (current != nullptr)
        current->errors += LineBytes(line);
    else
        Write(stderr, LineBytes(line));
}

void PrintFailure(const QString& book, const QString& reason, bool asJson)
{
    if (current != nullptr)
        current->hasFailure = true;
    if (asJson) {
        const QJsonObject object{{u"book"_s, ReadableName(book)}, {u"failure"_s, reason}};
        PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
        return;
    }
    const QString line = u"vmk: "_s + ShownName(book) + u": "_s + reason;
    if (current != nullptr)
        current->failure += LineBytes(line);
    else
        PrintErrorLine(line);
}

void PrintNotice(const QString& line)
{
    if (current != nullptr)
        current->notices.push_back(LineBytes(line));
    else
        PrintErrorLine(line);
}

void CountError(const QString& kind)
{
    if (current != nullptr)
        current->kinds.push_back(kind.toStdString());
}

bool FlushOutput()
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    PrintErrorLine(u"vmk: cannot write the results: "_s + QString::fromLocal8Bit(std::strerror(errno)));
    return false;
}

} // namespace vmk
