#include "Platform/Mrz/MrzNames.h"

namespace kelvara {

namespace {

QString words(QStringView part)
{
    QString text;
    for (const QChar character : part) {
        if (character != u'<')
            text += character;
        else if (!text.isEmpty() && !text.endsWith(u' '))
            text += u' ';
    }
    if (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace

MrzNames splitMrzNames(QStringView field)
{
    // Fillers before the name are no separator.
    qsizetype start = 0;
    while (start < field.size() && field[start] == u'<')
        ++start;
    const QStringView name = field.mid(start);
    const qsizetype separator = name.indexOf(QStringView(u"<<"));
    if (separator < 0)
        return { words(name), {} };
    return { words(name.first(separator)), words(name.mid(separator)) };
}

} // namespace kelvara
