#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Vision/VNObservation.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace kelvara {

class VisionDetectors;
class VisionImage;

/// Why a request yielded nothing.
struct VNError
{
    enum class Kind {
        NoDetector, ///< The services in use have no detector for the request.
        InvalidImage, ///< The image has no pixels.
        DetectorFailed ///< A detector gave up with an exception; the message is its own.
    };
    Kind kind;
    QString message;
};

/// One analysis to be performed on an image. A handler performs it and calls the completion on the performing thread;
/// one request is performed by one handler at a time and may be performed again and again.
class KELVARA_EXPORT VNRequest
{
public:
    using Results = std::variant<std::monostate, std::vector<VNRectangleObservation>, std::vector<VNTextObservation>,
        std::vector<VNFaceObservation>>;
    using CompletionHandler = std::function<void(const VNRequest& request, const std::optional<VNError>& error)>;

    explicit VNRequest(CompletionHandler completionHandler = {}) : m_completion(std::move(completionHandler)) { }
    virtual ~VNRequest() = default;

    /// What the last performance found: `std::monostate` after an error, a (maybe empty) list otherwise.
    [[nodiscard]] const Results& results() const { return m_results; }

    /// The results as a list of one kind of observation; null when they are of another kind or there are none.
    template<typename Observation> [[nodiscard]] const std::vector<Observation>* resultsAs() const
    {
        return std::get_if<std::vector<Observation>>(&m_results);
    }

    // For the handler. `detect` may run on any thread; `complete` runs on the performing thread, in request order.
    virtual std::optional<VNError> detect(const VisionImage& image, const VisionDetectors& detectors) = 0;
    void complete(const std::optional<VNError>& error) const;

protected:
    Results m_results;

private:
    CompletionHandler m_completion;
};

} // namespace kelvara
