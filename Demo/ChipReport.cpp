#include "Demo/ChipReport.h"

#include "Tools/Cli/ChipJson.h"

namespace kelvara::demo {

QJsonValue chipReport(const std::optional<NFCPassportModel>& passport)
{
    if (!passport)
        return {};
    QJsonObject report = cli::jsonOf(*passport);
    report.insert(QStringLiteral("portrait"),
        QJsonObject { { QStringLiteral("width"), passport->faceImage.width() },
            { QStringLiteral("height"), passport->faceImage.height() } });
    report.insert(QStringLiteral("signerIsTrusted"), passport->isSignerTrusted());
    report.insert(QStringLiteral("chipIsGenuine"), passport->verification.isChipGenuine());
    return report;
}

} // namespace kelvara::demo
