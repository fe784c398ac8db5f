// The data groups of text: a list of the tags that follow, then the values.

#include "Platform/Chip/software/LdsFiles.h"

namespace kelvara::chip::software {

namespace {

Bytes utf8(const QString& text)
{
    const QByteArray encoded = text.toUtf8();
    return bytes(
        ByteView(reinterpret_cast<const std::uint8_t*>(encoded.constData()), static_cast<std::size_t>(encoded.size())));
}

Bytes dateOf(const QString& digits, DateForm form)
{
    if (form == DateForm::BinaryCodedDecimals) {
        if (auto decimals = fromHex(digits.toStdString()))
            return *decimals;
    }
    return utf8(digits);
}

/// Gathers values and the list of their tags.
class DetailTemplate
{
public:
    void add(Tag tag, const Bytes& value)
    {
        if (value.empty())
            return;
        list(tag);
        append(m_values, makeTlv(tag, value));
    }
    void add(Tag tag, const QString& text) { add(tag, utf8(text)); }
    void add(Tag tag, const QStringList& parts) { add(tag, parts.join(u'<')); }
    void add(Tag tag, const std::optional<EncodedImage>& image)
    {
        if (image)
            add(tag, image->data);
    }
    void add(Tag tag, const std::optional<QString>& date, DateForm form)
    {
        if (date)
            add(tag, dateOf(*date, form));
    }
    void add(Tag tag, const std::vector<HolderName>& names)
    {
        if (names.empty())
            return;
        list(tag);
        Bytes all = makeTlv(0x02, Bytes { static_cast<std::uint8_t>(names.size()) });
        for (const HolderName& name : names)
            append(all, makeTlv(tag, utf8(name.written())));
        append(m_values, makeTlv(0xA0, all));
    }

    [[nodiscard]] Bytes file(Tag tag) const { return makeTlv(tag, joined({ makeTlv(0x5C, m_tags), m_values })); }

private:
    static void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }
    void list(Tag tag) { append(m_tags, bigEndian(tag)); }

    Bytes m_tags;
    Bytes m_values;
};

} // namespace

Bytes makeDG11(const DataGroup11& details, DateForm dates)
{
    DetailTemplate all;
    if (details.fullName)
        all.add(0x5F0E, details.fullName->written());
    all.add(0x5F0F, details.otherNames);
    all.add(0x5F10, details.personalNumber);
    all.add(0x5F2B, details.birthDate, dates);
    all.add(0x5F11, details.placeOfBirth);
    all.add(0x5F42, details.address);
    all.add(0x5F12, details.telephone);
    all.add(0x5F13, details.profession);
    all.add(0x5F14, details.title);
    all.add(0x5F15, details.personalSummary);
    all.add(0x5F16, details.proofOfCitizenship);
    all.add(0x5F17, details.otherTravelDocuments);
    all.add(0x5F18, details.custody);
    return all.file(0x6B);
}

Bytes makeDG12(const DataGroup12& details, DateForm dates)
{
    DetailTemplate all;
    all.add(0x5F19, details.issuingAuthority);
    all.add(0x5F26, details.issueDate, dates);
    all.add(0x5F1A, details.otherPersons);
    all.add(0x5F1B, details.endorsements);
    all.add(0x5F1C, details.taxOrExit);
    all.add(0x5F1D, details.front);
    all.add(0x5F1E, details.rear);
    all.add(0x5F55, details.personalizationTime, dates);
    all.add(0x5F56, details.personalizationSerial);
    return all.file(0x6C);
}

Bytes makeDG16(std::span<const PersonToNotify> persons)
{
    constexpr std::size_t kMost = 15;
    persons = persons.first(std::min(persons.size(), kMost));
    Bytes content = makeTlv(0x02, Bytes { static_cast<std::uint8_t>(persons.size()) });
    Tag tag = 0xA1;
    for (const PersonToNotify& person : persons) {
        Bytes one;
        if (person.recordedOn)
            one = makeTlv(0x5F50, utf8(*person.recordedOn));
        one = joined({ one, makeTlv(0x5F51, utf8(person.name.written())), makeTlv(0x5F52, utf8(person.telephone)),
            makeTlv(0x5F53, utf8(person.address.join(u'<'))) });
        content = joined({ content, makeTlv(tag++, one) });
    }
    return makeTlv(0x70, content);
}

} // namespace kelvara::chip::software
