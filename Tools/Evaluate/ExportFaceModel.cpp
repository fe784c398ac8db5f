// Writes the face filters that the library embeds, and compares its search with the one they were made for.
//
//   ExportFaceModel FILE     writes the filters of dlib's frontal face detector (see Platform/Vision/Resources)
//   ExportFaceModel          compares gradient histograms and best scores on photographed cards and selfies

#include "Platform/Vision/FaceFeatures.h"
#include "Platform/Vision/FaceScan.h"
#include "Tools/Specimen/Scene.h"

#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv/cv_image.h>
#include <opencv2/imgproc.hpp>

#include <QFile>
#include <QGuiApplication>
#include <QtEndian>

#include <cmath>
#include <cstdio>
#include <exception>

using namespace kelvara;
using namespace kelvara::specimen;

namespace {

bool write(const dlib::frontal_face_detector& detector, const QString& path)
{
    QByteArray bytes;
    for (unsigned long filter = 0; filter < detector.num_detectors(); ++filter) {
        // dlib keeps the weights plane by plane and the threshold behind them: the file's own order.
        const auto& weights = detector.get_w(filter);
        for (long i = 0; i < weights.size(); ++i) {
            const auto number = qToLittleEndian(static_cast<float>(weights(i)));
            bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
        }
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

cv::Mat grayScene(std::uint32_t seed)
{
    const bool selfie = seed % 4 == 0;
    const Subject subject = selfie ? Subject::Selfie : Subject::Front;
    const QSize size = selfie ? QSize(464, 618) : QSize(640, 448);
    const QImage picture = photograph(SpecimenData::fromSeed(seed), ordinary(seed, subject, size)).image;
    cv::Mat gray;
    cv::cvtColor(cv::Mat(picture.height(), picture.width(), CV_8UC4, const_cast<uchar*>(picture.constBits()),
                     static_cast<std::size_t>(picture.bytesPerLine())),
        gray, cv::COLOR_BGRA2GRAY);
    return gray;
}

void compare(dlib::frontal_face_detector& detector)
{
    constexpr float least = -0.5F;
    double difference = 0;
    double numbers = 0;
    double scoreDifference = 0;
    int both = 0;
    int onlyOne = 0;
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        const cv::Mat gray = grayScene(seed);
        const dlib::cv_image<unsigned char> image(gray);
        FaceFeatures features;
        features.compute(gray, 0);
        dlib::array<dlib::array2d<float>> planes;
        dlib::extract_fhog_features(image, planes, FaceFeatures::cellSize);
        for (int channel = 0; channel < FaceFeatures::channels; ++channel) {
            for (int row = 0; row < features.rows(); ++row) {
                for (int column = 0; column < features.columns(); ++column, ++numbers)
                    difference += std::abs(features.at(row, column)[channel] - planes[channel][row][column]);
            }
        }
        std::vector<dlib::rect_detection> theirs;
        detector(image, theirs, least);
        const std::vector<FaceCandidate> ours = scanForFaces(gray, least);
        if (theirs.empty() != ours.empty()) {
            ++onlyOne;
        } else if (!ours.empty()) {
            ++both;
            scoreDifference += std::abs(ours.front().score - theirs.front().detection_confidence);
        }
    }
    std::printf("mean difference of features %.5f; best scores of %d pictures differ by %.3f in the mean; "
                "%d pictures where only one found a face\n",
        difference / numbers, both, scoreDifference / both, onlyOne);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    try {
        dlib::frontal_face_detector detector = dlib::get_frontal_face_detector();
        if (argc > 1)
            return write(detector, QString::fromLocal8Bit(argv[1])) ? 0 : 1;
        compare(detector);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ExportFaceModel: %s\n", error.what());
        return 1;
    }
    return 0;
}
