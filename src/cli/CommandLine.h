#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace vmk {

/// Goes through the arguments of a command: options as "--name", "--name=value" or "--name value", all
/// else operands. "-" alone is an operand; behind "--" everything is.
class CommandLine
{
public:
    explicit CommandLine(QStringList commandArguments);

    /// Takes the next argument; false at the end, or once an error was noted.
    [[nodiscard]] bool next();
    /// The option taken, with its hyphens; empty for an operand.
    [[nodiscard]] const QString& option() const { return currentOption; }
    [[nodiscard]] const QString& operand() const { return currentOperand; }
    /// The value of the option taken; an error is noted when there is none, or an empty one.
    [[nodiscard]] QString value();
    /// The value as a whole number from `low` to `high`; an error is noted when it is none.
    [[nodiscard]] int number(int low, int high);

    /// Notes what is wrong with the arguments; the first error stays.
    void fail(const QString& problem);
    void failUnknownOption();
    /// What is wrong with the arguments; empty when nothing is.
    [[nodiscard]] QString error() const;

private:
    QStringList arguments;
    qsizetype at = 0;
    bool onlyOperands = false;
    QString currentOption;
    QString currentOperand;
    std::optional<QString> attached; // a value written behind "="
    QString firstError;
};

/// A file's name for a line of text: a line end or another control character in it as `\n` or `\x1b`.
[[nodiscard]] QString ShownName(const QString& name);

/// Writes to standard output or standard error in the system's encoding, a line end behind it.
void PrintLine(const QString& line);
void PrintErrorLine(const QString& line);

/// Writes out what `PrintLine` has gathered. False, with a line on standard error, if that fails.
[[nodiscard]] bool FlushOutput();

} // namespace vmk
