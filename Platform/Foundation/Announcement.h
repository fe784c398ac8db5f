#pragma once

#include <QString>

class QObject;

namespace kelvara {

/// Has assistive technology read a sentence out now. `speaker` is the object that says it: its accessible name or
/// description must hold the sentence already, as before Qt 6.8 an event carries no words and whoever listens asks the
/// speaker for them. Costs next to nothing while nobody listens. Main thread.
void announce(QObject& speaker, const QString& sentence);

} // namespace kelvara
