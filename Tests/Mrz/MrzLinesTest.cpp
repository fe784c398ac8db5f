#include "Platform/Mrz/MrzLines.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(MrzLines, KeepsTheLinesThatReachTheMean)
{
    struct Row
    {
        QString text;
        std::optional<QStringList> lines;
    };
    const QString thirty(30, u'<');
    const QString twentyNine(29, u'<');
    const QString accent = QString::fromUtf8("e\u0301"); // Two code points, one character.
    const Row rows[] = {
        { QStringLiteral("P<TUR  X\n\nABC"), QStringList { QStringLiteral("P<TURX") } },
        { thirty + u'\n' + twentyNine + u'\n' + thirty, QStringList { thirty, twentyNine, thirty } },
        { QStringLiteral(" \n  \n"), std::nullopt },
        { QString(), std::nullopt },
        { QStringLiteral("A B\tC"), QStringList { QStringLiteral("AB\tC") } }, // Only the plain space goes.
        // Four characters and six: the mean is five, though the first has eight units.
        { accent.repeated(4) + QStringLiteral("\nABCDEF"), QStringList { QStringLiteral("ABCDEF") } },
    };
    for (const Row& row : rows)
        EXPECT_EQ(mrzLines(row.text), row.lines) << row.text.toStdString();
}

TEST(MrzLines, DoubtsStayWithTheirCharacters)
{
    const std::vector<MrzLineReading> read { { QStringLiteral("A BC"), { 0.1F, 0.2F, 0.3F, 0.4F },
                                                 { QStringLiteral("4"), {}, QStringLiteral("8") } },
        { QStringLiteral("  "), {}, {} }, { QStringLiteral("X"), {}, {} } };
    const auto lines = mrzLines(read);
    ASSERT_TRUE(lines);
    ASSERT_EQ(lines->size(), 1U);
    EXPECT_EQ(lines->front().text, QStringLiteral("ABC"));
    EXPECT_EQ(lines->front().certainties, (std::vector { 0.1F, 0.3F, 0.4F }));
    EXPECT_EQ(lines->front().alternatives, (std::vector { QStringLiteral("4"), QStringLiteral("8") }));
}

} // namespace
} // namespace kelvara
