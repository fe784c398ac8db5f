#include "Tools/Specimen/Scene.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <iterator>
#include <vector>

// Writes a scene or a print and its truth: NAME.png and NAME.json.

namespace {

using namespace kelvara::specimen;

template<typename Value> using Names = std::vector<std::pair<QString, Value>>;

Names<Subject> subjects()
{
    return { { QStringLiteral("front"), Subject::Front }, { QStringLiteral("back"), Subject::Back },
        { QStringLiteral("nothing"), Subject::Nothing }, { QStringLiteral("hand"), Subject::Hand },
        { QStringLiteral("phone"), Subject::Phone }, { QStringLiteral("selfie"), Subject::Selfie } };
}

Names<Background> backgrounds()
{
    return { { QStringLiteral("desk"), Background::Desk }, { QStringLiteral("wood"), Background::Wood },
        { QStringLiteral("cloth"), Background::Cloth }, { QStringLiteral("text"), Background::TextPage },
        { QStringLiteral("white"), Background::NearWhite }, { QStringLiteral("keyboard"), Background::Keyboard },
        { QStringLiteral("dark"), Background::Dark } };
}

struct Amount
{
    QString name;
    QString help;
    std::function<void(SceneOptions&, double)> set;
};

std::vector<Amount> amounts()
{
    return {
        { QStringLiteral("fill"), QStringLiteral("card's width over the picture's width (selfie: face's height)"),
            [](SceneOptions& o, double v) { o.fill = v; } },
        { QStringLiteral("roll"), QStringLiteral("degrees in the picture"),
            [](SceneOptions& o, double v) { o.rollDegrees = v; } },
        { QStringLiteral("pitch"), QStringLiteral("degrees about the long axis"),
            [](SceneOptions& o, double v) { o.pitchDegrees = v; } },
        { QStringLiteral("yaw"), QStringLiteral("degrees about the short axis"),
            [](SceneOptions& o, double v) { o.yawDegrees = v; } },
        { QStringLiteral("shift-x"), QStringLiteral("pixels"), [](SceneOptions& o, double v) { o.shift.setX(v); } },
        { QStringLiteral("shift-y"), QStringLiteral("pixels"), [](SceneOptions& o, double v) { o.shift.setY(v); } },
        { QStringLiteral("shadow"), QStringLiteral("0 to 1"), [](SceneOptions& o, double v) { o.shadow = v; } },
        { QStringLiteral("glare"), QStringLiteral("0 to 1"), [](SceneOptions& o, double v) { o.glare = v; } },
        { QStringLiteral("low-contrast"), QStringLiteral("0 to 1"),
            [](SceneOptions& o, double v) { o.lowContrast = v; } },
        { QStringLiteral("motion"), QStringLiteral("blur in pixels"),
            [](SceneOptions& o, double v) { o.motionBlur = v; } },
        { QStringLiteral("focus"), QStringLiteral("blur, sigma in pixels"),
            [](SceneOptions& o, double v) { o.focusBlur = v; } },
        { QStringLiteral("noise"), QStringLiteral("sigma in grey levels"),
            [](SceneOptions& o, double v) { o.noise = v; } },
        { QStringLiteral("exposure"), QStringLiteral("stops"), [](SceneOptions& o, double v) { o.exposure = v; } },
    };
}

QJsonArray jsonOf(const QRectF& r)
{
    return { r.x(), r.y(), r.width(), r.height() };
}

QJsonObject truthOf(const SpecimenData& data, const QString& subject)
{
    QJsonObject truth { { QStringLiteral("seed"), static_cast<qint64>(data.seed) },
        { QStringLiteral("subject"), subject } };
    if (subject == u"front" || subject == u"back") {
        truth.insert(QStringLiteral("surname"), data.surname);
        truth.insert(QStringLiteral("givenNames"), data.givenNames);
        truth.insert(QStringLiteral("documentNumber"), data.documentNumber);
        truth.insert(QStringLiteral("identityNumber"), data.identityNumber);
        truth.insert(QStringLiteral("birthDate"), data.birthDate.toString(Qt::ISODate));
        truth.insert(QStringLiteral("expiryDate"), data.expiryDate.toString(Qt::ISODate));
        truth.insert(QStringLiteral("sex"), data.sex);
        truth.insert(QStringLiteral("mrz"), QJsonArray::fromStringList(data.mrzLines()));
    }
    return truth;
}

int fail(const QString& message)
{
    std::fprintf(stderr, "kelvara-specimen: %s\n", qPrintable(message));
    return 1;
}

template<typename Value> std::optional<Value> named(const Names<Value>& table, const QString& name)
{
    const auto found = std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.first == name; });
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

template<typename Value> QString namesOf(const Names<Value>& table)
{
    QStringList names;
    std::transform(
        table.begin(), table.end(), std::back_inserter(names), [](const auto& entry) { return entry.first; });
    return names.join(QStringLiteral(", "));
}

bool write(const QString& name, const QImage& image, const QJsonObject& truth)
{
    QFile file(name + QStringLiteral(".json"));
    return image.save(name + QStringLiteral(".png"), "PNG", 80) && file.open(QIODevice::WriteOnly)
        && file.write(QJsonDocument(truth).toJson()) >= 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints specimen cards and photographs them, with their truth."));
    parser.addHelpOption();
    const auto option = [&](const QString& name, const QString& help, const QString& preset = {}) {
        parser.addOption({ name, help, QStringLiteral("value"), preset });
    };
    option(QStringLiteral("subject"), namesOf(subjects()), QStringLiteral("front"));
    option(QStringLiteral("background"), namesOf(backgrounds()), QStringLiteral("desk"));
    option(QStringLiteral("seed"), QStringLiteral("chooses the person and everything left open"), QStringLiteral("1"));
    option(QStringLiteral("size"), QStringLiteral("WIDTHxHEIGHT of the picture"), QStringLiteral("1000x700"));
    option(QStringLiteral("out"), QStringLiteral("path without its ending"), QStringLiteral("specimen"));
    option(QStringLiteral("time"), QStringLiteral("shaken as at this second"));
    option(QStringLiteral("print"), QStringLiteral("only the printed side, this many pixels wide"));
    parser.addOption({ QStringLiteral("ordinary"), QStringLiteral("start from a draw of ordinary use") });
    parser.addOption({ QStringLiteral("fingers"), QStringLiteral("over an edge") });
    const std::vector<Amount> numbers = amounts();
    for (const Amount& amount : numbers)
        option(amount.name, amount.help);
    parser.process(application);

    const QString subjectName = parser.value(QStringLiteral("subject"));
    const auto subject = named(subjects(), subjectName);
    const auto background = named(backgrounds(), parser.value(QStringLiteral("background")));
    bool seedRight = false;
    const std::uint32_t seed = parser.value(QStringLiteral("seed")).toUInt(&seedRight);
    const QStringList sides = parser.value(QStringLiteral("size")).split(u'x');
    const QSize size = sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
    if (!subject || !background || !seedRight || size.isEmpty())
        return fail(QStringLiteral("cannot read subject, background, seed or size; see --help"));
    if (!printerProblem().isEmpty())
        return fail(printerProblem());

    const SpecimenData data = SpecimenData::fromSeed(seed);
    QJsonObject truth = truthOf(data, subjectName);
    QImage image;
    if (parser.isSet(QStringLiteral("print"))) {
        const int width = parser.value(QStringLiteral("print")).toInt();
        if (width <= 0 || (*subject != Subject::Front && *subject != Subject::Back))
            return fail(QStringLiteral("only the front and the back can be printed, at least one pixel wide"));
        image = *subject == Subject::Front ? printFront(data, width) : printBack(data, width);
    } else {
        SceneOptions scene = ordinary(seed, *subject, size);
        if (!parser.isSet(QStringLiteral("ordinary"))) {
            scene = {};
            scene.seed = seed;
            scene.size = size;
            scene.subject = *subject;
            scene.fill = *subject == Subject::Selfie ? 0.5 : scene.fill;
        }
        if (parser.isSet(QStringLiteral("background")) || !parser.isSet(QStringLiteral("ordinary")))
            scene.background = *background;
        scene.fingers = parser.isSet(QStringLiteral("fingers"));
        for (const Amount& amount : numbers) {
            if (!parser.isSet(amount.name))
                continue;
            bool right = false;
            amount.set(scene, parser.value(amount.name).toDouble(&right));
            if (!right)
                return fail(QStringLiteral("--%1 needs a number").arg(amount.name));
        }
        if (parser.isSet(QStringLiteral("time")))
            scene = shaken(scene, parser.value(QStringLiteral("time")).toDouble());
        const Scene taken = photograph(data, scene);
        image = taken.image;
        if (taken.corners) {
            QJsonArray corners;
            for (const QPointF corner : *taken.corners)
                corners.append(QJsonArray { corner.x(), corner.y() });
            truth.insert(QStringLiteral("corners"), corners);
        }
        if (taken.face)
            truth.insert(QStringLiteral("face"), jsonOf(*taken.face));
    }
    const QString out = parser.value(QStringLiteral("out"));
    return write(out, image, truth) ? 0 : fail(QStringLiteral("cannot write %1").arg(out));
}
