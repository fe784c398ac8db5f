#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

/// What a finished run of the program left behind.
struct CliProcess
{
    int exitCode = -1; ///< −1: it crashed or did not end.
    QString said;
    QString complained;

    /// Runs the built program without a display and waits for its end.
    [[nodiscard]] static CliProcess run(const QStringList& arguments);
    /// The same with something on its standard input, which is closed behind it, and further variables ("NAME=value").
    [[nodiscard]] static CliProcess run(
        const QStringList& arguments, const QByteArray& input, const QStringList& variables = {});

    /// One object of each line; an empty one for a line that is none.
    [[nodiscard]] std::vector<QJsonObject> objects() const;
};
