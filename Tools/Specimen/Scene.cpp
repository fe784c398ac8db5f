#include "Tools/Specimen/Scene.h"

#include "Tools/Specimen/Backdrop.h"
#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/CardLayer.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Person.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Sensor.h"
#include "Tools/Specimen/Things.h"

#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara::specimen {

namespace {

QImage surfaceSeen(const SceneOptions& options)
{
    const auto backdrop = backdropFor(options);
    // Surface and card tilt together, but a surface shrunk below its drawn extent would show its end.
    SceneOptions seen = options;
    const double width = options.size.width();
    const double factor = std::clamp(options.fill * frameOf(options).width() / width, 0.58, 1.3);
    seen.fill = factor * width / std::max(1.0, frameOf(options).width());
    QTransform fromBackdrop;
    fromBackdrop.scale(1 / backdrop->pixelsPerMm, 1 / backdrop->pixelsPerMm);
    fromBackdrop.translate(-backdrop->image.width() / 2.0, -backdrop->image.height() / 2.0);
    QImage picture(options.size, QImage::Format_ARGB32_Premultiplied);
    cv::Mat pixels = pixelsOf(picture);
    cv::warpPerspective(pixelsOf(backdrop->image), pixels, matrixOf(fromBackdrop * poseOf(seen)), pixels.size(),
        cv::INTER_LINEAR, cv::BORDER_REFLECT_101);
    return picture;
}

void photographPerson(Scene& scene, const SpecimenData& data, const SceneOptions& options)
{
    scene.image = roomFor(options)->copy();
    const auto person = personOf(data.seed);
    if (person->image.isNull())
        return;
    const QRectF frame = frameOf(options);
    const double scale = std::max(options.fill * frame.height(), 1.0) / person->face.height();
    QTransform place;
    const QPointF centre = frame.center() + options.shift;
    place.translate(centre.x(), centre.y());
    place.rotate(options.rollDegrees);
    place.scale(scale, scale);
    place.translate(-person->face.center().x(), -person->face.center().y());
    cv::Mat layer(scene.image.height(), scene.image.width(), CV_8UC4);
    cv::warpPerspective(
        pixelsOf(person->image), layer, matrixOf(place), layer.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    QPainter painter(&scene.image);
    painter.drawImage(0, 0, viewOf(layer));
    painter.end();
    scene.face = place.mapRect(person->face);
}

void photographCard(Scene& scene, const SpecimenData& data, const SceneOptions& options)
{
    const bool front = options.subject == Subject::Front;
    scene.image = surfaceSeen(options);
    if (!layCard(scene.image, data, options)) {
        scene.image = {};
        return;
    }
    scene.corners = cornersOf(options);
    if (front) {
        const QRectF face = printedFace(data);
        const QRectF onCard((face.x() - 0.5) * cardWidth, (face.y() - 0.5) * cardHeight, face.width() * cardWidth,
            face.height() * cardHeight);
        scene.face = poseOf(options).mapRect(onCard);
    }
    if (options.fingers)
        paintFingers(scene.image, options);
}

} // namespace

Scene photograph(const SpecimenData& data, const SceneOptions& options)
{
    Scene scene;
    if (options.size.isEmpty())
        return scene;
    switch (options.subject) {
    case Subject::Front:
    case Subject::Back:
        photographCard(scene, data, options);
        break;
    case Subject::Selfie:
        photographPerson(scene, data, options);
        break;
    case Subject::Nothing:
        scene.image = surfaceSeen(options);
        break;
    case Subject::Hand:
        scene.image = surfaceSeen(options);
        paintHand(scene.image, options);
        break;
    case Subject::Phone:
        scene.image = surfaceSeen(options);
        paintPhone(scene.image, options);
        break;
    }
    if (!scene.image.isNull()) {
        cv::Mat pixels = pixelsOf(scene.image);
        expose(pixels, options);
    }
    return scene;
}

} // namespace kelvara::specimen
