#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <QSize>

#include <optional>

namespace kelvara::chip {

enum class ImageKind { Unknown, Jpeg, Jpeg2000 };

/// A picture as the chip holds it, still encoded. A value.
struct KELVARA_EXPORT EncodedImage
{
    ImageKind kind = ImageKind::Unknown; ///< By the bytes themselves, not by what a header says of them.
    Bytes data;

    [[nodiscard]] static EncodedImage of(ByteView data);
};

/// What the first bytes say; Unknown for neither a JPEG stream nor a JPEG 2000 file or codestream.
[[nodiscard]] KELVARA_EXPORT ImageKind imageKindOf(ByteView data);

/// The codestream of a JPEG 2000 picture, alone or in the boxes of a file; it may go on beyond its end. Absent for
/// other kinds and where boxes are damaged.
[[nodiscard]] KELVARA_EXPORT std::optional<ByteView> codestreamOf(ByteView data);

/// The picture's size in pixels, read from its header without decoding anything. Absent where the header is none, or
/// where a JPEG 2000 header asks for more components or tiles than a portrait can have.
[[nodiscard]] KELVARA_EXPORT std::optional<QSize> imageSizeOf(ByteView data);

} // namespace kelvara::chip
