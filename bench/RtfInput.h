#pragma once

#include <cstddef>
#include <string>

namespace tme {

/// A letter without end as a word processor writes it: paragraphs of about 400 characters in three fonts with bold,
/// italic, underlined and coloured words, accents in the code page and beyond it, headings, bullets, links and small
/// tables. At least `bytes` long, by one paragraph or table at most. The same on every run and system.
std::string MakeRtfInput(std::size_t bytes);

}  // namespace tme
