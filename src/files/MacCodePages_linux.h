#pragma once

#include <array>

namespace tme {

/// What the bytes 80 to FF of a Macintosh page are that the system's converters do not know: 10004 Arabic, 10005 Hebrew
/// (its letters alone), 10006 Greek, 10081 Turkish; U+FFFD where there is nothing. Null for other pages.
const std::array<char16_t, 128>* MacCodePage(int code_page);

}  // namespace tme
