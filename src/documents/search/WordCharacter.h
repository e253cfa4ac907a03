#pragma once

namespace tme {

/// Letters, digits and the underscore, and beyond ASCII whatever is no punctuation, symbol or space.
bool IsWordCharacter(char32_t character);

}  // namespace tme
