#include "Demo/ResultFolder.h"

#include "Demo/HtmlReport.h"

#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace kelvara::demo {

namespace {

constexpr auto kResult = "result.json";

/// Every pixel, transparency included.
bool samePixels(const QImage& one, const QImage& other)
{
    return !one.isNull() && one.size() == other.size()
        && one.convertToFormat(QImage::Format_ARGB32) == other.convertToFormat(QImage::Format_ARGB32);
}

/// "didCaptureIdFrontPhoto", "cropImage" → "id-front-crop"; the chip's portrait is "chip-portrait".
QString fileNameOf(const Delivery& delivery, const DeliveredPicture& picture)
{
    if (picture.argument == QStringLiteral("faceImage"))
        return QStringLiteral("chip-portrait");
    QString name = delivery.method;
    name.remove(QStringLiteral("didCapture")).remove(QStringLiteral("Photo"));
    static const QRegularExpression betweenWords(QStringLiteral("(?<=[a-z])(?=[A-Z])"));
    name.replace(betweenWords, QStringLiteral("-"));
    return name.toLower() + (picture.argument == QStringLiteral("cropImage") ? QStringLiteral("-crop") : QString());
}

} // namespace

ResultFolder::ResultFolder(const QString& path) : m_folder(path) { }

std::optional<QString> ResultFolder::prepare()
{
    const auto complaint = [this](const char* what) {
        return QStringLiteral("The out folder \"%1\" %2.").arg(m_folder.path(), QLatin1String(what));
    };
    if (!m_folder.mkpath(QStringLiteral(".")))
        return complaint("cannot be made");
    static const QRegularExpression ours(QStringLiteral(
        "^(result\\.json|report\\.html|contact-sheet\\.png|(screen|gallery|picture)-\\d\\d-[a-z-]+\\.png)$"));
    for (const QString& name : m_folder.entryList(QDir::Files)) {
        if (ours.match(name).hasMatch() && !m_folder.remove(name))
            return complaint("holds files of an earlier run that cannot be removed");
    }
    writeFile(QLatin1String(kResult), "{}\n"); // what cannot be written is better known before the run than after it
    return m_problem.isEmpty() ? std::nullopt : std::optional(m_problem);
}

bool ResultFolder::holds(const QString& path) const
{
    const QString folder = m_folder.canonicalPath();
    const QString file = QFileInfo(path).canonicalFilePath();
    return !folder.isEmpty() && !file.isEmpty() && (file == folder || file.startsWith(folder + QLatin1Char('/')));
}

QString ResultFolder::nextName(const QString& kind, const QString& name)
{
    return QStringLiteral("%1-%2-%3.png").arg(kind).arg(++m_count[kind], 2, 10, QLatin1Char('0')).arg(name);
}

void ResultFolder::writeFile(const QString& name, const QByteArray& bytes)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        m_problem = QStringLiteral("\"%1\" cannot be written: %2.").arg(file.fileName(), file.errorString());
}

QString ResultFolder::write(const QString& kind, const QString& name, const QImage& image)
{
    QString file = nextName(kind, name);
    writeFile(file, UIImagePNGRepresentation(UIImage(image)).value_or(QByteArray()));
    return file;
}

QJsonObject ResultFolder::writePicture(const Delivery& delivery, const DeliveredPicture& picture)
{
    const QImage given = picture.image;
    const bool hasText = !picture.base64.isNull();
    const auto decoded
        = QByteArray::fromBase64Encoding(picture.base64.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    const QByteArray png = hasText ? decoded.decoded : UIImagePNGRepresentation(picture.image).value_or(QByteArray());
    const QString file = nextName(QStringLiteral("picture"), fileNameOf(delivery, picture));
    writeFile(file, png);
    QJsonObject written { { QStringLiteral("argument"), picture.argument }, { QStringLiteral("file"), file },
        { QStringLiteral("width"), given.width() }, { QStringLiteral("height"), given.height() },
        { QStringLiteral("pngBytes"), png.size() },
        { QStringLiteral("isPng"), png.startsWith(QByteArray("\x89PNG\r\n\x1a\n", 8)) },
        { QStringLiteral("isTheSamePicture"), samePixels(QImage::fromData(png, "PNG"), given) } };
    if (hasText) {
        written.insert(QStringLiteral("base64Characters"), picture.base64.size());
        written.insert(QStringLiteral("isBase64"), decoded.decodingStatus == QByteArray::Base64DecodingStatus::Ok);
    }
    return written;
}

QJsonArray ResultFolder::write(const QList<Delivery>& deliveries)
{
    QJsonArray all;
    for (const Delivery& delivery : deliveries) {
        QJsonArray pictures;
        for (const DeliveredPicture& picture : delivery.pictures)
            pictures.append(writePicture(delivery, picture));
        all.append(QJsonObject { { QStringLiteral("method"), delivery.method },
            { QStringLiteral("atMilliseconds"), delivery.atMilliseconds }, { QStringLiteral("pictures"), pictures } });
    }
    return all;
}

void ResultFolder::writeResult(const QJsonObject& result)
{
    writeFile(QLatin1String(kResult), QJsonDocument(result).toJson());
    writeFile(QStringLiteral("report.html"), htmlReport(result));
}

void ResultFolder::writeSheet(const QImage& sheet)
{
    // Row by row into the file: the sheet is twenty megabytes, and need not be there twice.
    QImageWriter writer(m_folder.filePath(QStringLiteral("contact-sheet.png")), "PNG");
    writer.setCompression(30);
    if (!writer.write(sheet))
        m_problem = QStringLiteral("\"%1\" cannot be written: %2.").arg(writer.fileName(), writer.errorString());
}

bool allSound(const QJsonArray& deliveries)
{
    return std::all_of(deliveries.begin(), deliveries.end(), [](const QJsonValue& delivery) {
        const QJsonArray pictures = delivery[QStringLiteral("pictures")].toArray();
        return std::all_of(pictures.begin(), pictures.end(), [](const QJsonValue& picture) {
            return picture[QStringLiteral("isBase64")].toBool(true) && picture[QStringLiteral("isPng")].toBool()
                && picture[QStringLiteral("isTheSamePicture")].toBool();
        });
    });
}

} // namespace kelvara::demo
