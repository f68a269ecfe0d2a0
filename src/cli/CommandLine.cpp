#include "CommandLine.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace vmk {

CommandLine::CommandLine(QStringList commandArguments)
    : arguments(std::move(commandArguments))
{
}

bool CommandLine::next()
{
    if (attached)
        fail(currentOption + u" takes no value"_s);
    if (!firstError.isEmpty() || at == arguments.size())
        return false;
    currentOption.clear();
    currentOperand.clear();
    const QString& argument = arguments[at++];
    if (!onlyOperands && argument == u"--") {
        onlyOperands = true;
        return next();
    }
    if (onlyOperands || argument == u"-" || !argument.startsWith(u'-')) {
        currentOperand = argument;
        return true;
    }
    const qsizetype equals = argument.indexOf(u'=');
    currentOption = argument.left(equals);
    if (equals >= 0)
        attached = argument.mid(equals + 1);
    return true;
}

QString CommandLine::value()
{
    QString value;
    if (attached)
        value = *std::exchange(attached, std::nullopt);
    else if (at < arguments.size())
        value = arguments[at++];
    if (value.isEmpty())
        fail(currentOption + u" needs a value"_s);
    return value;
}

int CommandLine::number(int low, int high)
{
    const QString text = value();
    bool isNumber = false;
    const int result = text.toInt(&isNumber);
    if (isNumber && low <= result && result <= high)
        return result;
    fail(currentOption + u" needs a number from "_s + QString::number(low) + u" to "_s
         + QString::number(high));
    return low;
}

void CommandLine::fail(const QString& problem)
{
    if (firstError.isEmpty())
        firstError = problem;
}

void CommandLine::failUnknownOption()
{
    fail(u"unknown option "_s + currentOption);
}

QString CommandLine::error() const
{
    return firstError;
}

QString ShownName(const QString& name)
{
    QString shown;
    for (const QChar c : name) {
        if (c == u'\n')
            shown += u"\\n"_s;
        else if (c.category() == QChar::Other_Control)
            shown += u"\\x%1"_s.arg(c.unicode(), 2, 16, QChar(u'0'));
        else
            shown += c;
    }
    return shown;
}

} // namespace vmk
