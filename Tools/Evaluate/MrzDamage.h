#pragma once

#include "Platform/Mrz/MrzLineReading.h"
#include "Tools/Specimen/Dice.h"

#include <QString>

#include <map>

namespace kelvara::evaluate {

/// What a reader takes each character of OCR-B for.
inline QStringView confusions(QChar character)
{
    static const std::map<char16_t, const char16_t*> table { { u'0', u"ODU" }, { u'O', u"0DQ" }, { u'1', u"I" },
        { u'I', u"1" }, { u'5', u"S" }, { u'S', u"5" }, { u'2', u"Z" }, { u'Z', u"2" }, { u'8', u"B" }, { u'B', u"8" },
        { u'6', u"G" }, { u'G', u"6" }, { u'K', u"<" }, { u'<', u"K" }, { u'U', u"0" }, { u'D', u"0" }, { u'N', u"HM" },
        { u'H', u"NM" }, { u'M', u"N" }, { u'Q', u"O0" }, { u'4', u"A" }, { u'T', u"7" } };
    const auto found = table.find(character.unicode());
    return found == table.end() ? QStringView() : QStringView(found->second);
}

struct Damage
{
    double rate; ///< Of characters that are misread.
    double arbitrary; ///< The part of them that is taken for any other character.
    bool hasCertainty; ///< Whether the reader says where it is in doubt.
};

/// The line as a reader of that kind would give it: characters misread, fillers of runs lost or doubled.
inline MrzLineReading degraded(const QString& line, const Damage& damage, specimen::Dice& dice)
{
    static constexpr QStringView all = u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ<";
    MrzLineReading reading;
    const auto add = [&](QChar character, QChar truth) {
        const bool isWrong = character != truth;
        reading.text += character;
        if (!damage.hasCertainty)
            return;
        // A wrong character is nearly always a doubtful one, a right one rarely.
        const bool isDoubtful = dice.chance(isWrong ? 0.95 : 0.02);
        reading.certainties.push_back(static_cast<float>(isDoubtful ? dice.real(0.3, 0.89) : dice.real(0.97, 1)));
        // What it was is nearly always among what the reader thinks it may be.
        const QChar other
            = isWrong && dice.chance(0.9) ? truth : all[dice.integer(0, static_cast<int>(all.size()) - 1)];
        reading.alternatives.push_back(isDoubtful && other != character ? QString(other) : QString());
    };
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar character = line[i];
        const bool isRun = character == u'<' && i > 0 && line[i - 1] == u'<';
        if (isRun && dice.chance(damage.rate / 8)) {
            if (dice.chance(0.5))
                continue;
            add(character, character);
        }
        if (!dice.chance(damage.rate)) {
            add(character, character);
            continue;
        }
        if (dice.chance(damage.arbitrary)) {
            const QChar other = all[dice.integer(0, static_cast<int>(all.size()) - 1)];
            add(other, character);
            continue;
        }
        const QStringView others = confusions(character);
        if (others.isEmpty())
            add(character, character);
        else
            add(others[dice.integer(0, static_cast<int>(others.size()) - 1)], character);
    }
    return reading;
}

} // namespace kelvara::evaluate
