#pragma once

#include <string>

#include "documents/reg/RegDocument.h"

namespace tme {

/// What is to be pasted into a key, with a number behind each name that a value or key has there already, so that
/// nothing is mixed. Below the root the paths say where keys come, and the text stays as it is.
std::string WithFreeNames(const RegDocument& document, const RegNode* key, std::string text);

}  // namespace tme
