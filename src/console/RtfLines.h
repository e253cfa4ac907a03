#pragma once

#include <string_view>

#include "console/Streams.h"

namespace tme::console {

/// Writes the text of a rich-text file: a line for each paragraph and for each row of a table, with tabs between the
/// cells; what stands in a cell is one line. Objects are "[what they are]". Any bytes give some text.
void PutRtfLines(std::string_view bytes, Streams& streams);

}  // namespace tme::console
