#include "Platform/Mrz/MrzLines.h"

#include "Platform/Foundation/CharacterCount.h"

namespace kelvara {

namespace {

MrzLineReading withoutSpaces(const MrzLineReading& line)
{
    MrzLineReading kept;
    for (qsizetype i = 0; i < line.text.size(); ++i) {
        if (line.text[i] == u' ')
            continue;
        const auto at = static_cast<std::size_t>(i);
        kept.text += line.text[i];
        // Once a figure is missing, the ones after it are missing too: the lists stay in step with the text.
        if (at < line.certainties.size())
            kept.certainties.push_back(line.certainties[at]);
        if (at < line.alternatives.size())
            kept.alternatives.push_back(line.alternatives[at]);
    }
    return kept;
}

const QString& textOf(const QString& line)
{
    return line;
}

const QString& textOf(const MrzLineReading& line)
{
    return line.text;
}

/// Drops the empty lines and those shorter than the mean of the others.
template<typename Lines> std::optional<Lines> longOnes(const Lines& lines)
{
    Lines filled;
    std::vector<qsizetype> lengths;
    qsizetype total = 0;
    for (const auto& line : lines) {
        if (textOf(line).isEmpty())
            continue;
        filled.push_back(line);
        lengths.push_back(characterCount(textOf(line)));
        total += lengths.back();
    }
    if (lengths.empty())
        return std::nullopt;
    const qsizetype mean = total / static_cast<qsizetype>(lengths.size());
    Lines kept;
    std::size_t at = 0;
    for (const auto& line : filled) {
        if (lengths[at++] >= mean)
            kept.push_back(line);
    }
    return kept;
}

} // namespace

std::optional<QStringList> mrzLines(const QString& text)
{
    QString joined = text;
    joined.remove(u' ');
    return longOnes(joined.split(u'\n'));
}

std::optional<std::vector<MrzLineReading>> mrzLines(const std::vector<MrzLineReading>& lines)
{
    std::vector<MrzLineReading> joined;
    joined.reserve(lines.size());
    for (const MrzLineReading& line : lines)
        joined.push_back(withoutSpaces(line));
    return longOnes(joined);
}

} // namespace kelvara
