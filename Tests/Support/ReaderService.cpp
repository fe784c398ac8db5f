#include "Tests/Support/ReaderService.h"

#include "Platform/Chip/transport/PcscTerminal.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace kelvara::test {

std::unique_ptr<ReaderService> ReaderService::start()
{
    const QString driver = QStringLiteral("/usr/lib/pcsc/drivers/serial/libifdvpcd.so");
    const QString program = QStandardPaths::findExecutable(
        QStringLiteral("pcscd"), { QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin") });
    if (program.isEmpty() || geteuid() != 0 || !QFile::exists(driver) || chip::PcscTerminal().isServiceRunning())
        return nullptr;
    // A port of its own: the usual one stays taken for a minute after an earlier service.
    QTcpServer free;
    if (!free.listen(QHostAddress::LocalHost))
        return nullptr;
    std::unique_ptr<ReaderService> service(new ReaderService);
    service->m_port = free.serverPort();
    free.close();
    if (!service->m_configuration.open())
        return nullptr;
    service->m_configuration.write(
        QStringLiteral("FRIENDLYNAME \"Virtual PCD\"\nDEVICENAME /dev/null:0x%1\nLIBPATH %2\nCHANNELID 0x%1\n")
            .arg(service->m_port, 0, 16)
            .arg(driver)
            .toLatin1());
    service->m_configuration.close();
    QProcess& process = service->m_process;
    process.setProgram(program);
    process.setArguments({ QStringLiteral("-f"), QStringLiteral("-c"), service->m_configuration.fileName() });
    // A program that dies must not leave it running: the next one's could not start.
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    QElapsedTimer clock;
    clock.start();
    constexpr qint64 kPatience = 20'000;
    while (!chip::PcscTerminal().isAvailable() && clock.elapsed() < kPatience) {
        // It refuses to start beside another one, which may be on its way out.
        if (process.waitForFinished(50) || process.state() == QProcess::NotRunning)
            process.start();
    }
    return service;
}

ReaderService::~ReaderService()
{
    m_process.terminate();
    m_process.waitForFinished(10'000);
}

} // namespace kelvara::test
