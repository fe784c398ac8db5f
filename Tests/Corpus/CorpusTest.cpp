#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>

// The fuzz programs' own functions, each under its program's name: what they begin with, and what they once failed on,
// is read in every build.
#define KELVARA_FUZZED(name) extern "C" int name(const std::uint8_t* data, std::size_t size);
KELVARA_FUZZED(FuzzChipAccess)
KELVARA_FUZZED(FuzzDataGroups)
KELVARA_FUZZED(FuzzMrzLines)
KELVARA_FUZZED(FuzzMrzParser)
KELVARA_FUZZED(FuzzPassportReading)
KELVARA_FUZZED(FuzzPortrait)
KELVARA_FUZZED(FuzzSecurityObject)
KELVARA_FUZZED(FuzzTlv)
#undef KELVARA_FUZZED

namespace {

struct Program
{
    const char* name;
    int (*read)(const std::uint8_t*, std::size_t);
};
void PrintTo(const Program& program, std::ostream* out)
{
    *out << program.name;
}

class Corpus : public testing::TestWithParam<Program>
{ };

/// What fails ends the program, or is reported by a sanitizer.
TEST_P(Corpus, IsRead)
{
    const QDir folder(QStringLiteral(KELVARA_CORPUS "/") + QLatin1String(GetParam().name));
    const QStringList names = folder.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray whole = file.readAll();
        // And cut off, as a card taken away would leave it.
        for (const QByteArray& bytes : { whole, whole.first(whole.size() / 2), whole.first(0) })
            EXPECT_EQ(
                GetParam().read(reinterpret_cast<const std::uint8_t*>(bytes.data()), std::size_t(bytes.size())), 0);
    }
}
INSTANTIATE_TEST_SUITE_P(All, Corpus,
    testing::Values(Program { "FuzzChipAccess", FuzzChipAccess }, Program { "FuzzDataGroups", FuzzDataGroups },
        Program { "FuzzMrzLines", FuzzMrzLines }, Program { "FuzzMrzParser", FuzzMrzParser },
        Program { "FuzzPassportReading", FuzzPassportReading }, Program { "FuzzPortrait", FuzzPortrait },
        Program { "FuzzSecurityObject", FuzzSecurityObject }, Program { "FuzzTlv", FuzzTlv }),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
