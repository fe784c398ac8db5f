#include "Demo/call/PretendedCamera.h"

#include <QDir>
#include <QPainter>

#include <cmath>

#include <unistd.h>

namespace kelvara::demo {

namespace {

constexpr QSize kPicture(480, 640);
constexpr int kFrames = 12;
constexpr double kSway = 3; ///< Pixels: nobody holds a phone quite still.

/// The frames as JPEG pictures, one after the other, which is what the browser takes for a film.
void writeFilm(QIODevice& film, const QImage& picture)
{
    const QImage fitted = picture.scaled(kPicture * 1.04, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    for (int i = 0; i < kFrames; ++i) {
        QImage frame(kPicture, QImage::Format_RGB32);
        const double phase = 2 * M_PI * i / kFrames;
        const QPointF sway(kSway * std::cos(phase), kSway * std::sin(phase));
        const QPointF corner = QRectF(QPointF(), kPicture).center() - QRectF(fitted.rect()).center() + sway;
        QPainter(&frame).drawImage(corner, fitted);
        frame.save(&film, "JPEG", 90);
    }
}

} // namespace

void PretendedCamera::show(const QImage& picture)
{
    if (geteuid() == 0 && qEnvironmentVariableIsEmpty("QTWEBENGINE_DISABLE_SANDBOX"))
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    if (!qEnvironmentVariableIsEmpty("QTWEBENGINE_CHROMIUM_FLAGS"))
        return; // somebody knows better
    QByteArray flags = "--log-level=3 --allow-loopback-in-peer-connection";
    if (!picture.isNull()) {
        flags += " --use-fake-device-for-media-stream";
        m_film.setFileTemplate(QDir::tempPath() + QStringLiteral("/kelvara-demo-XXXXXX.mjpeg"));
        if (m_film.open()) {
            writeFilm(m_film, picture);
            m_film.close();
            flags += " --use-file-for-fake-video-capture=" + m_film.fileName().toUtf8();
        }
    }
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags);
}

} // namespace kelvara::demo
