#pragma once

#include <QWebEngineProfile>

namespace kelvara {

/// A browser's state for one conference and no longer: nothing of it is stored, nothing is downloaded, and no address
/// but the web's is ever asked. Main thread.
class ConferenceProfile final : public QWebEngineProfile
{
    Q_OBJECT
public:
    explicit ConferenceProfile(QObject* parent = nullptr);
};

} // namespace kelvara
