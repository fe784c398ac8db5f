#pragma once

#include <QString>

#include <vector>

namespace kelvara {

/// One line of text as an OCR engine read it, with its doubt about each character. A value; any thread.
struct MrzLineReading
{
    /// The best reading, without a line feed.
    QString text;

    /// How likely each UTF-16 unit of `text` is right, 0 to 1. Shorter than the text or empty: nothing is known about
    /// the rest, which is neither trusted nor mistrusted. An engine whose figures are no probabilities must map them so
    /// that of the characters at 0.9 about one in ten is wrong.
    std::vector<float> certainties;

    /// What else each unit of `text` may be, best first, without the unit itself; may be shorter than the text or
    /// empty. Look-alikes of OCR-B need not be listed, the parser knows them.
    std::vector<QString> alternatives;
};

} // namespace kelvara
