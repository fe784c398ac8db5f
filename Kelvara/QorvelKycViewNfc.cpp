#include "Kelvara/ConsoleLine.h"
#include "Kelvara/DateText.h"
#include "Kelvara/IDCardModel.h"
#include "Kelvara/IDCardSummary.h"
#include "Kelvara/IDCardUtil.h"
#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/QorvelKycViewDelegate.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Kelvara/SdkModel.h"
#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/Chip/PassportReader.h"
#include "Platform/Foundation/FatalError.h"

namespace kelvara {

namespace {

using Message = NFCViewDisplayMessage;

constexpr auto kNoMrz = "Kimlik mrz bilgisi bulunamamıştır. Nfc okuması yapılabilmesi için öncelikle kimlik "
                        "bilgilerinin sistem tarafından kaydedilmesi gerekmektedir.";
constexpr auto kPresentCard = "IPhone'unuzu NFC özellikli bir Kimlik Kartının yakınında tutun.";
constexpr auto kLoading = "Yükleniyor lütfen bekleyiniz...\n";
constexpr auto kSuccess = "Kimlik Kartı Başarıyla okundu.";

QDate required(const std::optional<QDate>& date, std::string_view sentence)
{
    if (!date)
        fatalError(sentence);
    return *date;
}

/// What the reader's sheet says; nothing leaves the words to the reader.
std::optional<QString> displayText(const Message& message)
{
    switch (message.kind) {
    case Message::Kind::requestPresentCard:
        return QString::fromUtf8(kPresentCard);
    case Message::Kind::readingDataGroup:
        return QString::fromUtf8(kLoading) + QorvelKycViewPrivate::handleProgress(message.progress);
    case Message::Kind::successfulRead:
        return QString::fromUtf8(kSuccess);
    case Message::Kind::authenticating:
    case Message::Kind::error:
        break;
    }
    return std::nullopt;
}

} // namespace

void QorvelKycViewPrivate::setupReader()
{
    hasNfc = services.nfc && services.nfc->readingAvailable();
    idCardReader = std::make_unique<PassportReader>(ReaderLogLevel::Info, services.masterListURL);
    if (services.nfc)
        idCardReader->setTerminal(services.nfc->terminal());
    idCardReader->setSheetParent(q);
}

void QorvelKycViewPrivate::nfcReadInput()
{
    if (!hasNfc) {
        getNextViewType();
        return;
    }
    if (!sdkModel->mrzInfo) {
        initiateNfcReadLabel(QString::fromUtf8(kNoMrz));
        announceScreen();
        return;
    }
    const QKMRZScanResult& mrz = *sdkModel->mrzInfo;
    readCard(IDCardModel(mrz.documentNumber, required(mrz.birthDate, "The MRZ has no date of birth."),
        required(mrz.expiryDate, "The MRZ has no date of expiry.")));
}

void QorvelKycViewPrivate::readCard(const std::optional<IDCardModel>& model)
{
    if (!model)
        fatalError("There is no card to read.");
    const auto holder = std::make_shared<IDCardUtil>(services.userDefaults);
    holder->setPassportNumber(model->documentNumber);
    holder->setDateOfBirth(toString(required(model->birthDate, "The card has no date of birth.")));
    holder->setExpiryDate(toString(required(model->expiryDate, "The card has no date of expiry.")));
    // The completion runs on the reader's thread. The reader ends before this view's members do, so that the view is
    // there; what is queued for the main thread is dropped when the view has died by then.
    idCardReader->readPassport(holder->getMRZKey(), {}, true, displayText,
        [this, holder](
            const std::shared_ptr<NFCPassportModel>& passport, const std::optional<NFCPassportReaderError>& error) {
            if (!passport) {
                const QString line
                    = QStringLiteral("Hata:  %1").arg(error ? error->debugDescription() : QStringLiteral("nil"));
                printLine(line.toUtf8().constData());
                return;
            }
            onMain([this, holder, passport] {
                holder->setPassport(passport);
                setIDCard(holder);
            });
        });
}

QString QorvelKycViewPrivate::handleProgress(int percentualProgress)
{
    constexpr int kCircles = 5;
    const int filled = percentualProgress / 20;
    if (filled > kCircles || filled < 0)
        fatalError("Can't repeat a progress circle a negative number of times.");
    return QString::fromUtf8("🟢 ").repeated(filled) + QString::fromUtf8("⚪️ ").repeated(kCircles - filled);
}

void QorvelKycViewPrivate::setIDCard(const std::shared_ptr<IDCardUtil>& holder)
{
    {
        // The host is handed the whole model instead; what is certain here is that the chip has a usable portrait.
        [[maybe_unused]] const IDCardSummary summary = IDCardSummary::of(*holder);
    }
    callResultScreen(holder);
}

void QorvelKycViewPrivate::callResultScreen(const std::shared_ptr<IDCardUtil>& holder)
{
    sdkModel->nfcData = holder;
    if (QorvelKycViewDelegate* host = delegate()) {
        const std::shared_ptr<NFCPassportModel> passport = holder->passport();
        if (!passport)
            fatalError("There is no chip data to report.");
        const QPointer<QorvelKycView> view(q);
        host->didReadNfc(*q, *passport);
        if (!view)
            return;
    }
    getNextViewType();
}

} // namespace kelvara
