#pragma once

#include <cstddef>
#include <string>

namespace tme {

/// Registry export text, CR LF: keys up to eight levels deep below three hives, each a block of its own with strings,
/// numbers and binary data (a part of it over three lines). No two keys share their last component. 100,000 keys with
/// ten values each are about 52 MB and 1.4 million lines. The same on every run and system.
std::string MakeRegInput(std::size_t keys, std::size_t values_per_key);

/// The same with a type number on each second hex value.
std::string WithTypedValues(std::string text);

}  // namespace tme
