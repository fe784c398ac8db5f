#include "Tools/Cli/Output.h"

#include <QJsonDocument>

#include <cstdio>

namespace kelvara::cli {

bool print(const QJsonObject& object, bool isPretty)
{
    const QByteArray json = QJsonDocument(object).toJson(isPretty ? QJsonDocument::Indented : QJsonDocument::Compact);
    std::fwrite(json.constData(), 1, static_cast<std::size_t>(json.size()), stdout);
    if (!isPretty)
        std::fputc('\n', stdout);
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void complain(const QString& sentence)
{
    std::fprintf(stderr, "kelvara: %s\n", qUtf8Printable(sentence));
}

} // namespace kelvara::cli
