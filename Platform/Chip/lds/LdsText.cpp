#include "Platform/Chip/lds/LdsText.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

constexpr Tag kRepeatedTemplate = 0xA0;

QString withoutFillers(QString text)
{
    return text.replace(u'<', u' ').simplified();
}

} // namespace

HolderName HolderName::parse(const QString& written)
{
    const qsizetype at = written.indexOf(QLatin1String("<<"));
    if (at < 0)
        return { withoutFillers(written), {} };
    return { withoutFillers(written.left(at)), withoutFillers(written.mid(at + 2)) };
}

QString HolderName::written() const
{
    const auto fillers = [](const QString& text) { return text.simplified().replace(u' ', u'<'); };
    return secondary.isEmpty() ? fillers(primary) : fillers(primary) + QLatin1String("<<") + fillers(secondary);
}

QString ldsText(ByteView utf8)
{
    while (!utf8.empty() && utf8.back() == 0)
        utf8 = utf8.first(utf8.size() - 1);
    return QString::fromUtf8(reinterpret_cast<const char*>(utf8.data()), static_cast<qsizetype>(utf8.size()));
}

QStringList ldsParts(const QString& text)
{
    QStringList parts;
    for (const QString& part : text.split(u'<', Qt::SkipEmptyParts)) {
        if (const QString trimmed = part.trimmed(); !trimmed.isEmpty())
            parts.append(trimmed);
    }
    return parts;
}

std::optional<QString> ldsDigits(ByteView value, std::size_t digits)
{
    QString text;
    if (value.size() == digits) {
        for (const std::uint8_t byte : value)
            text += QChar(char16_t { byte });
    } else if (value.size() * 2 == digits) {
        for (const char digit : toHex(value))
            text += QLatin1Char(digit);
    } else {
        return std::nullopt;
    }
    const bool isDigits = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return isDigits ? std::optional(text) : std::nullopt;
}

std::optional<ByteView> ldsContent(ByteView file, Tag tag)
{
    const auto object = TlvReader(file).next();
    if (!object || object->tag != tag || object->whole.data() != file.data())
        return std::nullopt;
    return object->value;
}

QString ldsTextOf(ByteView content, Tag tag)
{
    const auto object = findTlv(content, tag);
    return object ? ldsText(object->value) : QString();
}

std::vector<ByteView> ldsRepeated(ByteView content, Tag tag)
{
    std::vector<ByteView> values;
    const auto take = [&](ByteView level) {
        TlvReader reader(level);
        while (const auto object = reader.next()) {
            if (object->tag == tag)
                values.push_back(object->value);
        }
    };
    take(content);
    TlvReader reader(content);
    while (const auto object = reader.next()) {
        if (object->tag == kRepeatedTemplate)
            take(object->value);
    }
    return values;
}

} // namespace kelvara::chip
