#include "Platform/Foundation/CharacterCount.h"

#include <QTextBoundaryFinder>

namespace kelvara {

qsizetype characterCount(const QString& text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

} // namespace kelvara
