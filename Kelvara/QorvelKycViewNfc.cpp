#include "Kelvara/QorvelKycView_p.h"

namespace kelvara {

void QorvelKycViewPrivate::nfcReadInput()
{
    if (!hasNfc) {
        getNextViewType();
        return;
    }
    if (!sdkModel->mrzInfo)
        initiateNfcReadLabel(
            QString::fromUtf8("Kimlik mrz bilgisi bulunamamıştır. Nfc okuması yapılabilmesi için öncelikle kimlik "
                              "bilgilerinin sistem tarafından kaydedilmesi gerekmektedir."));
}

} // namespace kelvara
