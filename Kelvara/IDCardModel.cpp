#include "Kelvara/IDCardModel.h"

#include <utility>

namespace kelvara {

IDCardModel::IDCardModel(QString number, const QDate& birth, const QDate& expiry)
    : documentNumber(std::move(number)), birthDate(birth), expiryDate(expiry)
{ }

} // namespace kelvara
