#pragma once

#include "BookReport.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vmk {

/// Reads the arguments of a command: options as "--name", "--name=value" or "--name value", and operands. "-"
/// alone is an operand, and so is every argument after "--".
class CommandLine
{
public:
    explicit CommandLine(QStringList commandArguments);

    /// Reads the next argument. Returns false at the end, or after an error.
    [[nodiscard]] bool next();
    /// The current option with its hyphens; empty for an operand.
    [[nodiscard]] const QString& option() const { return currentOption; }
    [[nodiscard]] const QString& operand() const { return currentOperand; }
    /// The value of the current option. A missing or empty value is an error.
    [[nodiscard]] QString value();
    /// The value as a whole number from `low` to `high`. Any other value is an error.
    [[nodiscard]] int number(int low, int high);

    /// Records an error in the arguments; the first one is kept.
    void fail(const QString& problem);
    void failUnknownOption();
    /// The error in the arguments; empty if there is none.
    [[nodiscard]] QString error() const;

private:
    QStringList arguments;
    qsizetype at = 0;
    bool onlyOperands = false;
    QString currentOption;
    QString currentOperand;
    std::optional<QString> attached; // a value written after "="
    QString firstError;
};

/// Returns a file name for one line of text: line ends and other control characters appear as `\n` or `\x1b`.
[[nodiscard]] QString ShownName(const QString& name);

} // namespace vmk
