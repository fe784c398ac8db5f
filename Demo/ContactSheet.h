#pragma once

#include <QImage>
#include <QList>
#include <QString>

namespace kelvara::demo {

/// A screen with its name.
struct SheetEntry
{
    QString name;
    QImage image; ///< As small as it is shown: a sheet's screens are together when none of them is worth much memory.
};

/// The screen for a sheet.
[[nodiscard]] SheetEntry sheetEntry(const QString& name, const QImage& screen);

/// All screens on one picture, in rows under a title, each with its name beneath. Main thread.
[[nodiscard]] QImage contactSheet(const QString& title, const QList<SheetEntry>& screens);

} // namespace kelvara::demo
