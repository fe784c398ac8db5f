#pragma once

#include "Platform/Foundation/Export.h"

#include <QString>
#include <QStringView>

#include <memory>

namespace kelvara {

class NFCPassportModel;
class UserDefaults;

/// The three parts of a machine-readable zone that open a card's chip, and later what the chip said. The parts are kept
/// in the application's user defaults whenever a key is made, so that a later session starts with the last ones.
/// Personal data. One thread at a time; the main thread in the flow.
class KELVARA_EXPORT IDCardUtil
{
public:
    /// Starts with the parts that were kept last under "passportNumber", "dateOfBirth" and "expiryDate"; empty texts
    /// where there are none. A null store (a device that remembers nothing) is like an empty one.
    explicit IDCardUtil(std::shared_ptr<UserDefaults> userDefaults);
    /// On the application's own store.
    IDCardUtil();
    virtual ~IDCardUtil();
    IDCardUtil(const IDCardUtil&) = delete;
    IDCardUtil& operator=(const IDCardUtil&) = delete;

    /// The document number as it stands in the zone, without fillers at its end and without check digit.
    [[nodiscard]] virtual QString passportNumber() const;
    virtual void setPassportNumber(const QString& number);

    /// Six digits YYMMDD.
    [[nodiscard]] virtual QString dateOfBirth() const;
    virtual void setDateOfBirth(const QString& date);

    /// Six digits YYMMDD.
    [[nodiscard]] virtual QString expiryDate() const;
    virtual void setExpiryDate(const QString& date);

    /// What was read from the chip; null until a read succeeded.
    [[nodiscard]] virtual std::shared_ptr<NFCPassportModel> passport() const;
    virtual void setPassport(std::shared_ptr<NFCPassportModel> passport);

    /// Whether the parts have the lengths of parts: a number of at least 8 user-perceived characters and dates of
    /// exactly 6. What they hold is not looked at.
    [[nodiscard]] virtual bool isValid() const;

    /// Keeps the three parts in the user defaults and returns the chip's access key: number, birth and expiry, each
    /// followed by its check digit. Nothing is padded, cut or checked.
    virtual QString getMRZKey();

    /// The 7-3-1 check digit over 0–9, A–Z, `<` and the space (which counts as a filler). 0 for a text with any other
    /// character, and for an empty one.
    [[nodiscard]] virtual int calcCheckSum(const QString& value) const;

private:
    std::shared_ptr<UserDefaults> m_userDefaults;
    QString m_passportNumber;
    QString m_dateOfBirth;
    QString m_expiryDate;
    std::shared_ptr<NFCPassportModel> m_passport;
};

} // namespace kelvara
