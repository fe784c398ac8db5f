#pragma once

namespace kelvara::specimen {

/// Something that is kept for the next picture, until `forgetPictures`. Known from its construction to its end. Any
/// thread.
class KeptPictures
{
public:
    KeptPictures();
    KeptPictures(const KeptPictures&) = delete;
    KeptPictures& operator=(const KeptPictures&) = delete;

    /// Any thread.
    virtual void forget() = 0;

protected:
    virtual ~KeptPictures();
};

} // namespace kelvara::specimen
