#pragma once

#include "Kelvara/MrzPageReader.h"
#include "Tools/Cli/Look.h"

namespace kelvara::cli {

/// Reads machine-readable zones the way of the view.
class MrzLook final : public Look
{
public:
    /// The model is `modelFolder`'s "ocrb.traineddata".
    explicit MrzLook(const QString& modelFolder);
    /// Loads the model.
    [[nodiscard]] std::optional<QString> problem() override;
    [[nodiscard]] Finding at(const QImage& picture) override;

private:
    TesseractEngine m_engine;
    const QKMRZParser m_parser;
    MrzPageReader m_reader;
};

} // namespace kelvara::cli
