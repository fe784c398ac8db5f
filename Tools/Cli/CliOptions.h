#pragma once

#include <QString>
#include <QStringList>

#include <variant>

namespace kelvara::cli {

struct CliOptions
{
    enum class Command { Mrz, Card, Face };

    Command command = Command::Mrz;
    QStringList files;
    bool isPretty = false;
    QString annotated; ///< Path of the annotated picture; empty for none.
    QString modelFolder; ///< Empty for the library's own model.
};

/// The program ends here: what it says and its exit code. An error goes to the error stream.
struct CliEnd
{
    QString text;
    int exitCode = 0;
};

/// `arguments` without the program's name.
[[nodiscard]] std::variant<CliOptions, CliEnd> parseOptions(const QStringList& arguments);

} // namespace kelvara::cli
