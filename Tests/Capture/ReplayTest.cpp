#include "Tests/Capture/CaptureRig.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>
#include <sys/stat.h>

#include <atomic>

namespace kelvara::test {
namespace {

using testing::ElementsAre;

/// What a camera delivers, kept as images.
class Film
{
public:
    explicit Film(ReplayCamera& camera) : m_camera(camera)
    {
        m_started = camera.start([this](const CMSampleBuffer& frame) {
            const std::lock_guard lock(m_mutex);
            ++m_count;
            m_newest = imageOf(*frame.imageBuffer());
            if (m_images.size() < kKept)
                m_images.push_back(m_newest);
        });
    }
    ~Film() { m_camera.stop(); }

    [[nodiscard]] bool started() const { return m_started; }

    /// The first images, once there are so many; fewer when they do not come.
    [[nodiscard]] std::vector<QImage> images(std::size_t wanted)
    {
        waitFor([&] { return count() >= wanted; });
        const std::lock_guard lock(m_mutex);
        return { m_images.begin(), m_images.begin() + static_cast<std::ptrdiff_t>(std::min(wanted, m_images.size())) };
    }

    [[nodiscard]] QImage newest() const
    {
        const std::lock_guard lock(m_mutex);
        return m_newest;
    }

    [[nodiscard]] std::size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }

private:
    ReplayCamera& m_camera;
    bool m_started = false;
    mutable std::mutex m_mutex;
    std::size_t m_count = 0;
    QImage m_newest;
    static constexpr std::size_t kKept = 8;
    std::vector<QImage> m_images;
};

QImage plain(QRgb color, QSize size = { 32, 24 })
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// The grey values of the images' middles.
std::vector<int> greys(const std::vector<QImage>& images)
{
    std::vector<int> values;
    for (const QImage& image : images)
        values.push_back(image.isNull() ? -1 : qGray(image.pixel(image.rect().center())));
    return values;
}

class Replay : public testing::Test
{
protected:
    [[nodiscard]] QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    void write(const char* name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    [[nodiscard]] QByteArray read(const char* name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// A video whose frames get brighter: 20, 40, 60 …
    void writeVideo(const char* name, int fourcc, int frames, cv::Size size = { 64, 48 }) const
    {
        cv::VideoWriter video(path(name).toStdString(), cv::CAP_FFMPEG, fourcc, 25, size);
        ASSERT_TRUE(video.isOpened());
        for (int i = 1; i <= frames; ++i)
            video.write(cv::Mat(size, CV_8UC3, cv::Scalar::all(20 * i)));
    }

    QTemporaryDir folder;
};

TEST_F(Replay, SaysWhatIsWrongWithASource)
{
    write("text.txt", "no picture");
    write("empty.png", "");
    write("broken.png", QByteArray("\x89PNG\r\n\x1a\n", 8) + "and nothing more");
    QDir(folder.path()).mkdir(QStringLiteral("bare"));
    const auto reader = [](const char* what, const ReplaySource& source, const char* sentence) {
        ASSERT_TRUE(source.problem()) << what;
        EXPECT_THAT(source.problem()->toStdString(), testing::HasSubstr(sentence)) << what;
        ReplayCamera camera(source);
        EXPECT_FALSE(camera.start([](const CMSampleBuffer&) {})) << what;
    };
    reader("nothing", ReplaySource(), "There is no source");
    reader("no picture", ReplaySource::still(QImage()), "empty");
    reader("no function", ReplaySource::generator({}), "no generator");
    reader("missing", ReplaySource::path(path("missing.png")), "There is no file or folder");
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    reader("pipe", ReplaySource::path(path("pipe")), "neither a file nor a folder");
    reader("missing video", ReplaySource::video(path("missing.mp4")), "There is no file or folder");
    reader("text", ReplaySource::path(path("text.txt")), "cannot be read as a picture or a video");
    reader("empty", ReplaySource::path(path("empty.png")), "cannot be read as a picture or a video");
    reader("broken", ReplaySource::still(path("broken.png")), "cannot be read as a picture");
    reader("a folder as a still", ReplaySource::still(folder.path()), "cannot be read as a picture");
    reader("a folder as a video", ReplaySource::video(folder.path()), "cannot be read");
    reader("bare", ReplaySource::path(path("bare")), "no pictures in the folder");
    EXPECT_EQ(ReplaySource::still(plain(0xff808080)).problem(), std::nullopt);
}

TEST_F(Replay, StandsAStillUprightAsItsTagSays)
{
    QImageWriter writer(path("turned.jpg"));
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    writer.setQuality(95);
    ASSERT_TRUE(writer.write(quarters({ 48, 32 })));
    ReplayCamera camera(ReplaySource::path(path("turned.jpg")));
    Film film(camera);
    const auto images = film.images(2);
    ASSERT_EQ(images.size(), 2U);
    EXPECT_EQ(images[1].size(), QSize(32, 48));
    EXPECT_EQ(quartersOf(images[1]), "BRWG");
}

TEST_F(Replay, ShowsAFolderInTheOrderOfNames)
{
    plain(0xff141414).save(path("b.png"));
    plain(0xff0a0a0a).save(path("a.jpg"));
    plain(0xff1e1e1e, { 7, 5 }).save(path("c.without-a-suffix"), "PNG");
    write("aa.txt", "no picture");
    QByteArray damaged = read("b.png");
    write("ab.png", damaged.left(40)); // looks like one until it is read
    ReplayCamera camera(ReplaySource::path(folder.path()), { .framesPerSecond = 0 });
    Film film(camera);
    EXPECT_THAT(greys(film.images(5)), ElementsAre(10, 20, 30, 10, 20));
}

TEST_F(Replay, EndsWithTheLastPictureStanding)
{
    const auto generate = [](std::int64_t index, std::chrono::microseconds) {
        const int grey = 10 * static_cast<int>(index);
        return index < 3 ? plain(qRgb(grey, grey, grey)) : QImage();
    };
    ReplayCamera once(ReplaySource::generator(generate), { .framesPerSecond = 0, .loops = false });
    int ended = 0;
    QObject::connect(&once, &ReplayCamera::ended, [&] { ++ended; });
    {
        Film film(once);
        EXPECT_THAT(greys(film.images(6)), ElementsAre(0, 10, 20, 20, 20, 20));
    }
    EXPECT_TRUE(waitFor([&] { return ended == 1; }));
    EXPECT_TRUE(once.isConnected());

    ReplayCamera loop(ReplaySource::generator(generate), { .framesPerSecond = 0 });
    {
        Film film(loop);
        EXPECT_THAT(greys(film.images(5)), ElementsAre(0, 10, 20, 0, 10));
    }
    loop.setSource(ReplaySource::still(plain(0xff646464)));
    Film film(loop);
    EXPECT_THAT(greys(film.images(1)), ElementsAre(100));
    // Another source in mid-stream; one that cannot be used shows nothing and ends.
    loop.setSource(ReplaySource::still(plain(0xffc8c8c8)));
    EXPECT_TRUE(waitFor([&] { return greys({ film.newest() }) == std::vector { 200 }; }));
    QObject::connect(&loop, &ReplayCamera::ended, [&] { ++ended; });
    loop.setSource(ReplaySource::still(path("missing.png")));
    EXPECT_TRUE(waitFor([&] { return ended == 2; }));
}

TEST_F(Replay, HasItsTroublesOnDemand)
{
    ReplayCamera camera(ReplaySource::still(plain(0xff808080)), { .framesPerSecond = 500, .hasTorch = true });
    std::vector<bool> plugs;
    QObject::connect(&camera, &AVCaptureDevice::connectedChanged, [&](bool connected) { plugs.push_back(connected); });
    camera.setRefusesToStart(true);
    EXPECT_FALSE(camera.start([](const CMSampleBuffer&) {}));
    camera.setRefusesToStart(false);

    const auto standsStill = [](Film& film) {
        // A frame may be under way when the trouble begins.
        const std::size_t before = film.count();
        waitFor([timer = QElapsedTimer(), &film, before]() mutable {
            if (!timer.isValid())
                timer.start();
            return timer.elapsed() > 50 || film.count() > before + 1;
        });
        return film.count() <= before + 1;
    };
    Film film(camera);
    EXPECT_FALSE(camera.start([](const CMSampleBuffer&) {})) << "it is in use";
    EXPECT_EQ(film.images(1).size(), 1U);
    camera.setStalled(true);
    EXPECT_TRUE(standsStill(film));
    EXPECT_TRUE(camera.isConnected());
    camera.setStalled(false);
    EXPECT_TRUE(waitFor([&, before = film.count()] { return film.count() > before + 2; }));

    EXPECT_TRUE(camera.setTorchModeOn(1));
    camera.setConnected(false);
    camera.setConnected(false);
    EXPECT_TRUE(standsStill(film));
    EXPECT_FALSE(camera.isTorchActive());
    EXPECT_FALSE(camera.setTorchModeOn(1));
    camera.setConnected(true);
    EXPECT_THAT(plugs, ElementsAre(false, true));
    EXPECT_TRUE(waitFor([&, before = film.count()] { return film.count() > before + 2; }));

    camera.setRefusesTorch(true);
    EXPECT_FALSE(camera.setTorchModeOn(1));
    camera.setRefusesTorch(false);
    EXPECT_FALSE(camera.setTorchModeOn(0));
    EXPECT_TRUE(camera.setTorchModeOn(1));
    camera.setTorchModeOff();
    EXPECT_FALSE(camera.isTorchActive());
    camera.setRefusesConfiguration(true);
    EXPECT_FALSE(camera.lockForConfiguration());
    camera.setRefusesConfiguration(false);
    EXPECT_TRUE(camera.lockForConfiguration());
    EXPECT_EQ(camera.configurationLocks(), 1);
    camera.unlockForConfiguration();
    camera.unlockForConfiguration();
    EXPECT_EQ(camera.configurationLocks(), 0);
}

TEST_F(Replay, CutsScalesAndTurnsBack)
{
    // The upright picture stands in the middle half of a wider one; a sensor that lies on its side delivers it turned.
    const QImage upright = quarters({ 60, 80 });
    ReplayCamera camera(ReplaySource::still(upright), { .size = { 40, 20 }, .sensorRotation = 90 });
    Film film(camera);
    const auto images = film.images(1);
    ASSERT_EQ(images.size(), 1U);
    EXPECT_EQ(images[0].size(), QSize(40, 20));
    EXPECT_EQ(quartersOf(images[0].transformed(QTransform().rotate(90))), "RGBW");

    for (const auto format : { QImage::Format_ARGB32, QImage::Format_RGB888, QImage::Format_Grayscale8 }) {
        QImage image = plain(0xff646464).convertToFormat(format);
        if (format == QImage::Format_ARGB32)
            image.fill(0x07646464);
        ReplayCamera other(ReplaySource::still(image));
        Film shown(other);
        const auto got = shown.images(1);
        ASSERT_EQ(got.size(), 1U);
        EXPECT_EQ(got[0].pixel(0, 0), 0xff646464) << int(format);
    }
    const QImage opaque = plain(0xff123456);
    ReplayCamera direct(ReplaySource::generator([opaque](auto, auto) { return opaque; }));
    std::atomic<const void*> bytes { nullptr };
    ASSERT_TRUE(direct.start([&](const CMSampleBuffer& frame) { bytes = frame.imageBuffer()->baseAddress(); }));
    EXPECT_TRUE(waitFor([&] { return bytes != nullptr; }));
    direct.stop();
    EXPECT_EQ(bytes, opaque.constBits()) << "no copy of a picture that is right already";
}

TEST_F(Replay, GoesThroughTheLayoutAsked)
{
    for (const auto layout : { ReplayPixelLayout::BGRA, ReplayPixelLayout::NV12, ReplayPixelLayout::I420,
             ReplayPixelLayout::YUYV, ReplayPixelLayout::MJPEG }) {
        ReplayCamera camera(
            ReplaySource::still(quarters({ 63, 41 })), { .framesPerSecond = 0, .layout = layout, .rowPadding = 5 });
        Film film(camera);
        const auto images = film.images(2);
        ASSERT_EQ(images.size(), 2U);
        EXPECT_EQ(images[1].size(), QSize(63, 41));
        EXPECT_EQ(quartersOf(images[1]), "RGBW");
    }
}

TEST_F(Replay, PlaysVideos)
{
    writeVideo("film.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 4);
    const auto source = ReplaySource::path(path("film.avi"));
    EXPECT_EQ(source.problem(), std::nullopt);
    ReplayCamera loop(source, { .framesPerSecond = 0 });
    std::vector<int> values = [&] { return greys(Film(loop).images(6)); }();
    ASSERT_EQ(values.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(values[i], 20 * static_cast<int>(i % 4 + 1), 3);

    ReplayCamera once(source, { .framesPerSecond = 0, .loops = false });
    int ended = 0;
    QObject::connect(&once, &ReplayCamera::ended, [&] { ++ended; });
    values = [&] { return greys(Film(once).images(6)); }();
    ASSERT_EQ(values.size(), 6U);
    EXPECT_EQ(values[5], values[3]);
    EXPECT_TRUE(waitFor([&] { return ended == 1; }));
}

TEST_F(Replay, TurnsAVideoAsItsTagSays)
{
    writeVideo("film.mp4", cv::VideoWriter::fourcc('m', 'p', '4', 'v'), 3);
    QByteArray bytes = read("film.mp4");
    const qsizetype header = bytes.indexOf("tkhd");
    ASSERT_GT(header, 0);
    // The display matrix of a quarter turn, in the track's header.
    const QByteArray matrix = QByteArray::fromHex("000000000001000000000000"
                                                  "ffff00000000000000000000"
                                                  "003000000000000040000000");
    bytes.replace(header + 44, matrix.size(), matrix);
    write("film.mp4", bytes);
    ReplayCamera camera(ReplaySource::video(path("film.mp4")));
    const auto images = Film(camera).images(1);
    ASSERT_EQ(images.size(), 1U);
    EXPECT_EQ(images[0].size(), QSize(48, 64));
}

TEST_F(Replay, OutlivesDamagedVideos)
{
    writeVideo("film.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 6);
    const QByteArray whole = read("film.avi");
    const auto play = [&](const char* name) {
        const auto source = ReplaySource::path(path(name));
        ReplayCamera camera(source, { .framesPerSecond = 0, .loops = false });
        std::atomic<bool> ended { false };
        QObject::connect(&camera, &ReplayCamera::ended, [&] { ended = true; });
        Film film(camera);
        EXPECT_EQ(film.started(), !source.problem()) << name;
        EXPECT_TRUE(!film.started() || waitFor([&] { return ended.load(); })) << name;
    };
    for (const int percent : { 1, 30, 60, 90 }) {
        write("cut.avi", whole.left(whole.size() * percent / 100));
        play("cut.avi");
        QByteArray scrambled = whole;
        for (qsizetype i = whole.size() * percent / 100; i < whole.size(); i += 7)
            scrambled[i] = static_cast<char>(scrambled[i] ^ (i * 31));
        write("scrambled.avi", scrambled);
        play("scrambled.avi");
    }
}

TEST_F(Replay, ProviderHandsOutByPosition)
{
    const auto back = stillCamera(plain(0xff000000));
    const auto front = stillCamera(plain(0xff000000), { .position = AVCaptureDevicePosition::Front });
    const auto ask = [](ReplayCameraProvider provider, AVCaptureDevicePosition position) {
        return provider.defaultDevice(AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, position);
    };
    EXPECT_EQ(ask({ back, front }, AVCaptureDevicePosition::Back), back);
    EXPECT_EQ(ask({ back, front }, AVCaptureDevicePosition::Front), front);
    EXPECT_EQ(ask({ back, nullptr }, AVCaptureDevicePosition::Front), nullptr);
    EXPECT_EQ(ReplayCameraProvider(nullptr, front).defaultDevice(AVMediaType::Video), front);
    EXPECT_EQ(ReplayCameraProvider().defaultDevice(AVMediaType::Video), nullptr);
}

} // namespace
} // namespace kelvara::test
