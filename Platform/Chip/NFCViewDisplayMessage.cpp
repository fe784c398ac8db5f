#include "Platform/Chip/NFCViewDisplayMessage.h"

namespace kelvara {

namespace {

using chip::DataGroupId;

QString presentText(bool isCardLost)
{
    return isCardLost ? QString::fromUtf8("Bağlantı koptu. Kartı yeniden yaklaştırın, okuma kaldığı yerden sürecek.")
                      : QString::fromUtf8("Kartınızı okuyucuya yaklaştırın ve okuma bitene kadar kıpırdatmayın.");
}

/// What a person calls the content of a file.
QString readingText(DataGroupId file)
{
    switch (file) {
    case DataGroupId::DG1:
        return QString::fromUtf8("Kimlik bilgileri okunuyor…\nKartı kıpırdatmayın.");
    case DataGroupId::DG2:
        return QString::fromUtf8("Fotoğraf okunuyor…\nKartı kıpırdatmayın.");
    case DataGroupId::DG7:
        return QString::fromUtf8("İmza okunuyor…\nKartı kıpırdatmayın.");
    case DataGroupId::DG11:
    case DataGroupId::DG12:
        return QString::fromUtf8("Ek bilgiler okunuyor…\nKartı kıpırdatmayın.");
    default:
        return QString::fromUtf8("Kart okunuyor…\nKartı kıpırdatmayın.");
    }
}

} // namespace

QString NFCViewDisplayMessage::text() const
{
    switch (kind) {
    case Kind::requestPresentCard:
        return presentText(isCardLost);
    case Kind::authenticating:
        return QString::fromUtf8("Kart doğrulanıyor…\nKartı kıpırdatmayın.");
    case Kind::readingDataGroup:
        return readingText(dataGroup);
    case Kind::error:
        return failure.value_or(NFCPassportReaderError()).message();
    case Kind::successfulRead:
        return QString::fromUtf8("Kartınız okundu. Kartı çekebilirsiniz.");
    }
    return {};
}

} // namespace kelvara
