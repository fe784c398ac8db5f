#include "Platform/Chip/NFCPassportReaderError.h"

#include <QStringList>

namespace kelvara {

QString NFCPassportReaderError::message() const
{
    switch (kind) {
    case Kind::NoReader:
        return QString::fromUtf8("Kart okuyucu bulunamadı. Okuyucunun bağlı ve açık olduğundan emin olup yeniden "
                                 "deneyin.");
    case Kind::AlreadyReading:
        return QString::fromUtf8("Başka bir okuma sürüyor. Bitmesini bekleyin veya onu iptal edin.");
    case Kind::InvalidKey:
        return QString::fromUtf8("Kartın üzerindeki kod satırları doğru okunamadı. Kartın fotoğrafını yeniden çekin.");
    case Kind::MasterListUnusable:
        return QString::fromUtf8("Kartı doğrulamak için gereken dosya açılamadı. Uygulamayı güncelleyip yeniden "
                                 "deneyin.");
    case Kind::UserCancelled:
        return QString::fromUtf8("Okuma iptal edildi. Dilediğinizde yeniden başlatabilirsiniz.");
    case Kind::Timeout:
        return QString::fromUtf8(
            "Süre doldu, kart algılanamadı. Yeniden deneyin ve kartı okuyucuya iyice yaklaştırın.");
    case Kind::TagLost:
        return QString::fromUtf8(
            "Kartla bağlantı birkaç kez koptu. Kılıfları çıkarın, kartı düz bir yere koyup yeniden "
            "deneyin.");
    case Kind::WrongKey:
        return QString::fromUtf8("Kart, okunan bilgilerle açılamadı. Doğru kartı tuttuğunuzdan emin olun ya da kartın "
                                 "fotoğrafını yeniden çekin.");
    case Kind::UnsupportedCard:
        return QString::fromUtf8(
            "Bu kart okunamıyor. Yalnızca çipli kimlik kartınızı, başka kart olmadan yaklaştırın.");
    case Kind::NotGenuine:
        return QString::fromUtf8("Kartın gerçek olduğu doğrulanamadı. Lütfen başka bir kimlik belgesi kullanın.");
    case Kind::UnreadableData:
        return QString::fromUtf8("Karttaki bilgilerin bir bölümü okunamadı. Yeniden deneyin; olmazsa başka bir kimlik "
                                 "belgesi kullanın.");
    case Kind::ConnectionFailed:
        return QString::fromUtf8("Kartla iletişim kurulamadı. Kartın ve telefonun kılıfını çıkarıp yeniden deneyin.");
    }
    return {};
}

QString NFCPassportReaderError::debugDescription() const
{
    QString line = QString::fromUtf8(nameOf(kind).data(), qsizetype(nameOf(kind).size()));
    if (!detail.empty())
        line += QStringLiteral(": ") + QString::fromStdString(detail).simplified();
    QStringList circumstances;
    if (dataGroup) {
        const std::string_view file = chip::entryOf(*dataGroup).name;
        circumstances += QString::fromUtf8(file.data(), qsizetype(file.size()));
    }
    if (sw != 0)
        circumstances += QStringLiteral("status word %1").arg(sw, 4, 16, QLatin1Char('0'));
    if (!circumstances.isEmpty())
        line += QStringLiteral(" (") + circumstances.join(QStringLiteral(", ")) + QLatin1Char(')');
    return line;
}

std::string_view nameOf(NFCPassportReaderError::Kind kind)
{
    using Kind = NFCPassportReaderError::Kind;
    switch (kind) {
    case Kind::NoReader:
        return "NoReader";
    case Kind::AlreadyReading:
        return "AlreadyReading";
    case Kind::InvalidKey:
        return "InvalidKey";
    case Kind::MasterListUnusable:
        return "MasterListUnusable";
    case Kind::UserCancelled:
        return "UserCancelled";
    case Kind::Timeout:
        return "Timeout";
    case Kind::TagLost:
        return "TagLost";
    case Kind::WrongKey:
        return "WrongKey";
    case Kind::UnsupportedCard:
        return "UnsupportedCard";
    case Kind::NotGenuine:
        return "NotGenuine";
    case Kind::UnreadableData:
        return "UnreadableData";
    case Kind::ConnectionFailed:
        return "ConnectionFailed";
    }
    return "Unknown";
}

} // namespace kelvara
