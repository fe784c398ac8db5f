#include "Kelvara/IDCardUtil.h"

#include "Platform/Foundation/CharacterCount.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Mrz/MrzCheckDigit.h"

#include <utility>

namespace kelvara {

namespace {

constexpr QLatin1String passportNumberKey("passportNumber");
constexpr QLatin1String dateOfBirthKey("dateOfBirth");
constexpr QLatin1String expiryDateKey("expiryDate");

} // namespace

IDCardUtil::IDCardUtil() : IDCardUtil(UserDefaults::standard()) { }

IDCardUtil::IDCardUtil(std::shared_ptr<UserDefaults> userDefaults) : m_userDefaults(std::move(userDefaults))
{
    const auto kept = [this](const QString& key) {
        return m_userDefaults ? m_userDefaults->string(key).value_or(QString()) : QString();
    };
    m_passportNumber = kept(passportNumberKey);
    m_dateOfBirth = kept(dateOfBirthKey);
    m_expiryDate = kept(expiryDateKey);
}

IDCardUtil::~IDCardUtil() = default;

QString IDCardUtil::passportNumber() const
{
    return m_passportNumber;
}

void IDCardUtil::setPassportNumber(const QString& number)
{
    m_passportNumber = number;
}

QString IDCardUtil::dateOfBirth() const
{
    return m_dateOfBirth;
}

void IDCardUtil::setDateOfBirth(const QString& date)
{
    m_dateOfBirth = date;
}

QString IDCardUtil::expiryDate() const
{
    return m_expiryDate;
}

void IDCardUtil::setExpiryDate(const QString& date)
{
    m_expiryDate = date;
}

std::shared_ptr<NFCPassportModel> IDCardUtil::passport() const
{
    return m_passport;
}

void IDCardUtil::setPassport(std::shared_ptr<NFCPassportModel> passport)
{
    m_passport = std::move(passport);
}

bool IDCardUtil::isValid() const
{
    return characterCount(passportNumber()) >= 8 && characterCount(dateOfBirth()) == 6
        && characterCount(expiryDate()) == 6;
}

QString IDCardUtil::getMRZKey()
{
    if (m_userDefaults) {
        m_userDefaults->set(passportNumber(), passportNumberKey);
        m_userDefaults->set(dateOfBirth(), dateOfBirthKey);
        m_userDefaults->set(expiryDate(), expiryDateKey);
    }
    const int number = calcCheckSum(passportNumber());
    const int birth = calcCheckSum(dateOfBirth());
    const int expiry = calcCheckSum(expiryDate());
    return passportNumber() + QString::number(number) + dateOfBirth() + QString::number(birth) + expiryDate()
        + QString::number(expiry);
}

int IDCardUtil::calcCheckSum(const QString& value) const
{
    QString text = value;
    return mrzCheckDigit(text.replace(u' ', u'<')).value_or(0);
}

} // namespace kelvara
