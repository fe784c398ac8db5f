#pragma once

#include <QDir>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/// What a finished run of the demo left behind.
struct DemoProcess
{
    int exitCode = -1; ///< −1: it crashed or did not end.
    QString said;
    QString complained;

    /// Runs the built demo without a display and waits for its end.
    [[nodiscard]] static DemoProcess run(const QStringList& arguments);
};

/// result.json of a run.
[[nodiscard]] QJsonObject resultIn(const QDir& folder);
