#pragma once

#include <functional>
#include <string_view>

namespace tme {

/// Takes the next part of a text or file. False when it could not be taken, and the producer should stop.
using PartSink = std::function<bool(std::string_view)>;
/// Hands over all parts in order. False to give up, or because the sink did.
using PartProducer = std::function<bool(const PartSink&)>;

}  // namespace tme
