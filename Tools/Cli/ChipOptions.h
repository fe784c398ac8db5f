#pragma once

#include "Tools/Cli/CliOptions.h"

#include <chrono>
#include <optional>

namespace kelvara::cli {

/// What `kelvara chip` is asked for. A value.
struct ChipOptions
{
    QString key; ///< The access key; empty with a software chip that is opened by its own.
    QString softwareFile; ///< Empty: the first contactless reader.
    QString readerName; ///< A part of it; empty: any.
    QString portraitFile; ///< Where to write the portrait; empty: nowhere.
    QString masterListFile; ///< Empty: the signer is not checked.
    std::chrono::seconds patience { 60 };
    bool isTraced = false;
    bool isPretty = false;
};

/// `arguments` without the program's name and "chip".
[[nodiscard]] std::variant<ChipOptions, CliEnd> parseChipOptions(const QStringList& arguments);

/// The access key that a zone holds, in lines or in one, with or without blanks around them; absent for text that is
/// no zone, or one whose check digits or dates cannot be.
[[nodiscard]] std::optional<QString> accessKeyOfZone(const QString& zone);

} // namespace kelvara::cli
