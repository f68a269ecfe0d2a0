#include "Command.h"
#include "CommandLine.h"
#include "FileNames.h"
#include "ProcessFiles.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <new>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr std::array Commands
    = {&ValidateCommand, &DisplayCommand, &FindCommand,     &ConvertCommand, &ImagesCommand,
       &CleanCommand,    &SpellCommand,   &VersionsCommand, &RecoverCommand};

QString GeneralHelp()
{
    QString text = u"usage: vmk COMMAND [ARGUMENT...]\n\nThe command-line companion of Vellumark.\n\n"_s;
    for (const Command* command : Commands)
        text += u"  "_s + QString::fromLatin1(command->name).leftJustified(12)
            + QString::fromLatin1(command->summary) + u'\n';
    return text
        + u"\n  vmk COMMAND --help   shows the help of a command\n"
          u"  vmk --version        shows the version"_s;
}

const Command* CommandNamed(const QString& name)
{
    const auto found = std::ranges::find_if(
        Commands, [&name](const Command* command) { return name == QLatin1StringView(command->name); });
    return found == Commands.end() ? nullptr : *found;
}

int ShowHelp(const QString& commandName)
{
    const Command* command = CommandNamed(commandName);
    PrintLine(command == nullptr ? GeneralHelp() : QString::fromUtf8(command->help).trimmed());
    return FlushOutput() ? ExitClean : ExitFailure;
}

int ShowVersion()
{
    PrintLine(u"vmk "_s + QString::fromLatin1(VMK_VERSION));
    return FlushOutput() ? ExitClean : ExitFailure;
}

/// Returns the command and its arguments. Not those of the application object, which replaces the bytes of a
/// name that are not UTF-8.
QStringList ReadArguments(int count, char** values)
{
    QStringList arguments;
    for (int i = 1; i < count; ++i)
        arguments.append(DecodeFileName(values[i]));
    return arguments;
}

/// The toolkit warns on standard error unless the locale is UTF-8; paths are UTF-8 here in any locale.
void UseUtf8Locale()
{
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
        ::setenv("LC_ALL", "C.UTF-8", 1);
}

} // namespace

int main(int count, char** values)
{
    HoldStandardHandles();
    SurviveFileSizeLimit();
    UseUtf8Locale();
    const QCoreApplication application(count, values);
    QStringList arguments = ReadArguments(count, values);
    if (arguments.isEmpty()) {
        PrintErrorLine(GeneralHelp());
        return ExitFailure;
    }

    const QString name = arguments.takeFirst();
    if (name == u"--version")
        return ShowVersion();
    if (name == u"--help" || name == u"-h" || name == u"help")
        return ShowHelp(arguments.value(0));
    const Command* command = CommandNamed(name);
    if (command == nullptr) {
        PrintErrorLine(u"vmk: unknown command \""_s + name + u"\"; try vmk --help"_s);
        return ExitFailure;
    }
    const auto operands = arguments.indexOf(u"--"_s);
    if (arguments.mid(0, operands).contains(u"--help"_s))
        return ShowHelp(name);
    try {
        return command->run(arguments);
    } catch (const std::bad_alloc&) {
        PrintErrorLine(u"vmk: not enough memory"_s);
        return ExitFailure;
    }
}
