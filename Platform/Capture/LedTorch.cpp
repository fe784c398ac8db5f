#include "Platform/Capture/LedTorch.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

int readNumber(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().trimmed().toInt();
}

bool writeNumber(const QString& path, int number)
{
    // Unbuffered: the kernel's refusal shows in the write itself. Not created where it is missing.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray text = QByteArray::number(number);
    return file.write(text) == text.size();
}

QString brightness(const QString& light)
{
    return light + QStringLiteral("/brightness");
}

} // namespace

LedTorch::LedTorch(const QString& root)
{
    const QDir folder(root);
    for (const QString& pattern : { QStringLiteral("*torch*"), QStringLiteral("*flash*") }) {
        for (const QString& name : folder.entryList({ pattern }, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            m_lights << folder.filePath(name);
        if (!m_lights.isEmpty())
            return;
    }
}

bool LedTorch::isOn() const
{
    return std::any_of(
        m_lights.begin(), m_lights.end(), [](const QString& light) { return readNumber(brightness(light)) > 0; });
}

bool LedTorch::turnOn(float level)
{
    if (!(level > 0.0F && level <= 1.0F))
        return false;
    bool lit = false;
    for (const QString& light : std::as_const(m_lights)) {
        const int full = readNumber(light + QStringLiteral("/max_brightness"));
        if (full > 0)
            lit |= writeNumber(
                brightness(light), std::max(1, static_cast<int>(std::lround(level * static_cast<float>(full)))));
    }
    return lit;
}

void LedTorch::turnOff()
{
    for (const QString& light : std::as_const(m_lights))
        writeNumber(brightness(light), 0);
}

} // namespace kelvara
