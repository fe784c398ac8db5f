#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    // Death tests re-run the program: forking a process that has threads would hang.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvara"));
    QCoreApplication::setApplicationName(QStringLiteral("KelvaraTests"));
    return RUN_ALL_TESTS();
}
