#include "Documents.h"

#include <Kelvara/FilterVendor.h>
#include <Kelvara/MrzPageReader.h>
#include <Kelvara/OcrbModel.h>
#include <Platform/Chip/PassportReader.h>
#include <Platform/Chip/software/SoftwareTerminal.h>
#include <Platform/Vision/VisionDetectors.h>
#include <Platform/Vision/VisionImage.h>
#include <Tools/Specimen/Scene.h>

#include <QTemporaryFile>
#include <QUrl>

#include <future>

using namespace kelvara;

QString tryZone()
{
    const auto data = specimen::SpecimenData::fromSeed(11);
    specimen::SceneOptions options;
    options.subject = specimen::Subject::Back;
    options.size = { 1400, 1000 };
    const QImage picture = specimen::photograph(data, options).image;

    FilterVendor::registerFilters();
    TesseractEngine engine(QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly);
    const QKMRZParser parser(true);
    const MrzPageReading reading = MrzPageReader(engine, parser).read(picture);
    if (reading.error)
        return reading.error->sentence;
    if (!reading.result || !reading.result->allCheckDigitsValid || reading.lines != data.mrzLines())
        return QStringLiteral("The zone was read as: ") + reading.lines.join(QLatin1Char(' '));
    return {};
}

QString tryFace()
{
    const auto data = specimen::SpecimenData::fromSeed(5);
    const VisionImage image(specimen::printFront(data).convertToFormat(QImage::Format_RGB32));
    const auto faces = VisionDetectors::native()->faces->detect(image);
    return faces.empty() ? QStringLiteral("No face was found on the portrait.") : QString();
}

QString tryChip()
{
    namespace software = chip::software;
    const auto made = software::SoftwareChip::make(software::ChipProfile());
    if (const auto* problem = std::get_if<QString>(&made))
        return *problem;
    const auto chip = std::get<std::shared_ptr<software::SoftwareChip>>(made);

    const chip::Bytes certificate = chip->authority()->certificatePem();
    QTemporaryFile authorities;
    if (!authorities.open()
        || authorities.write(reinterpret_cast<const char*>(certificate.data()), qint64(certificate.size())) < 0
        || !authorities.flush())
        return QStringLiteral("There is no room for a temporary file.");

    struct Outcome
    {
        std::shared_ptr<NFCPassportModel> passport;
        std::optional<NFCPassportReaderError> error;
    };
    std::promise<Outcome> promise;
    PassportReader reader(ReaderLogLevel::Warning, QUrl::fromLocalFile(authorities.fileName()));
    reader.setTerminal(std::make_shared<software::SoftwareTerminal>(chip));
    reader.readPassport(chip->mrzKey(), {}, true, {}, [&promise](auto passport, auto error) {
        promise.set_value({ std::move(passport), std::move(error) });
    });
    const Outcome outcome = promise.get_future().get();
    if (outcome.error)
        return outcome.error->debugDescription();
    const NFCPassportModel& passport = *outcome.passport;
    if (passport.surname != QLatin1String("ERIKSSON") || passport.faceImage.isNull())
        return QStringLiteral("The chip was read without its holder.");
    const auto& proofs = passport.verification;
    if (!proofs.isChipGenuine() || !proofs.passiveAuthentication || !proofs.passiveAuthentication->isGenuine())
        return QStringLiteral("The chip was read, but not proven genuine.");
    return {};
}
