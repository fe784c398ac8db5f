#pragma once

#include <QImage>
#include <QList>
#include <QString>

namespace kelvara::demo {

/// A screen with its name.
struct SheetEntry
{
    QString name;
    QImage image;
};

/// All screens on one picture, in rows under a title, each with its name beneath. Main thread.
[[nodiscard]] QImage contactSheet(const QString& title, const QList<SheetEntry>& screens);

} // namespace kelvara::demo
