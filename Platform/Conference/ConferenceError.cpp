#include "Platform/Conference/ConferenceError.h"

#include <array>

namespace kelvara {

namespace {

struct Wording
{
    ConferenceErrorKind kind;
    const char* name;
    const char* message;
};

constexpr std::array kWordings {
    Wording { ConferenceErrorKind::NoServer, "noServer", "Görüşme sunucusunun adresi verilmedi." },
    Wording { ConferenceErrorKind::InvalidServer, "invalidServer", "Görüşme sunucusunun adresi geçersiz." },
    Wording { ConferenceErrorKind::InsecureServer, "insecureServer",
        "Görüşme sunucusunun adresi güvenli değil. Güvenliğiniz için bağlanılmadı." },
    Wording { ConferenceErrorKind::NoRoom, "noRoom", "Görüşme odası belirtilmedi." },
    Wording { ConferenceErrorKind::ServerUnreachable, "serverUnreachable",
        "Görüşme sunucusuna ulaşılamadı. İnternet bağlantınızı kontrol edin." },
    Wording { ConferenceErrorKind::ServerUntrusted, "serverUntrusted",
        "Görüşme sunucusunun kimliği doğrulanamadı. Güvenliğiniz için bağlanılmadı." },
    Wording {
        ConferenceErrorKind::NoConferenceServer, "noConferenceServer", "Bu adreste bir görüşme sunucusu bulunamadı." },
    Wording { ConferenceErrorKind::NoAnswer, "noAnswer", "Görüşme sunucusu yanıt vermedi." },
    Wording { ConferenceErrorKind::TokenRefused, "tokenRefused", "Görüşmeye katılma izniniz doğrulanamadı." },
    Wording { ConferenceErrorKind::ConnectionLost, "connectionLost", "Görüşme bağlantısı koptu." },
    Wording { ConferenceErrorKind::ClientFailed, "clientFailed", "Görüşme beklenmedik bir hata nedeniyle sona erdi." },
    Wording { ConferenceErrorKind::PageCrashed, "pageCrashed", "Görüşme ekranı beklenmedik biçimde kapandı." },
    Wording { ConferenceErrorKind::Unavailable, "unavailable", "Bu cihazda görüntülü görüşme yapılamıyor." },
};

const Wording& wording(ConferenceErrorKind kind)
{
    for (const Wording& candidate : kWordings)
        if (candidate.kind == kind)
            return candidate;
    return kWordings.back();
}

} // namespace

QString ConferenceError::name() const
{
    return QString::fromLatin1(wording(kind).name);
}

QString ConferenceError::message() const
{
    return QString::fromUtf8(wording(kind).message);
}

} // namespace kelvara
