#pragma once

#include <QImage>
#include <QString>

#include <variant>

namespace kelvara::cli {

/// Why a file is no picture, as a sentence.
struct Unreadable
{
    QString sentence;
};

/// The file's picture, upright (as its Exif entry says), without alpha (over white), `Format_RGB32`.
[[nodiscard]] std::variant<QImage, Unreadable> readPicture(const QString& path);

} // namespace kelvara::cli
