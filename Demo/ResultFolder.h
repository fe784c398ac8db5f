#pragma once

#include "Demo/Delivery.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace kelvara::demo {

/// The folder that a run leaves behind. Main thread.
class ResultFolder
{
public:
    explicit ResultFolder(const QString& path);

    /// Makes the folder, and takes an earlier run's files out of it (no others). One sentence if that fails.
    [[nodiscard]] std::optional<QString> prepare();

    /// Whether `path` is this folder or lies in it.
    [[nodiscard]] bool holds(const QString& path) const;

    /// Writes a picture as `kind`-NN-`name`.png, numbered within its kind; the file's name.
    QString write(const QString& kind, const QString& name, const QImage& image);

    /// Writes what the delegate got: each picture's file is the very PNG that its base64 text holds, or one made here
    /// where it came without such a text. The returned objects say whether that is exactly the picture it came with.
    [[nodiscard]] QJsonArray write(const QList<Delivery>& deliveries);

    /// Writes `result.json`, and `report.html` about it.
    void writeResult(const QJsonObject& result);
    /// Writes `contact-sheet.png`.
    void writeSheet(const QImage& sheet);

    /// What could not be written, as a sentence; empty if all was.
    [[nodiscard]] QString problem() const { return m_problem; }
    [[nodiscard]] QString path() const { return m_folder.absolutePath(); }

private:
    [[nodiscard]] QString nextName(const QString& kind, const QString& name);
    void writeFile(const QString& name, const QByteArray& bytes);
    [[nodiscard]] QJsonObject writePicture(const Delivery& delivery, const DeliveredPicture& picture);

    QDir m_folder;
    QHash<QString, int> m_count;
    QString m_problem;
};

/// Whether `deliveries`, as `ResultFolder::write` returned them, are sound throughout.
[[nodiscard]] bool allSound(const QJsonArray& deliveries);

} // namespace kelvara::demo
