#pragma once

#include <QProcess>
#include <QTemporaryFile>

#include <cstdint>
#include <memory>

namespace kelvara::test {

/// The machine's reader service (pcscd) with a virtual reader, started for a while. There is one such service on a
/// machine: where one runs already, it is left alone.
class ReaderService
{
public:
    /// Null where it cannot be started: it or the virtual reader's driver is not installed, or another one runs.
    [[nodiscard]] static std::unique_ptr<ReaderService> start();
    ~ReaderService();

    /// Where cards connect to the virtual reader.
    [[nodiscard]] std::uint16_t port() const { return m_port; }

private:
    ReaderService() = default;

    QTemporaryFile m_configuration;
    QProcess m_process;
    std::uint16_t m_port = 0;
};

} // namespace kelvara::test
