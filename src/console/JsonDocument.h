#pragma once

#include <string>

#include "console/ConsoleFile.h"
#include "console/Streams.h"

// An INI or registry file as JSON, from which the same bytes can be made again:
// {"kind": "ini", "encoding": "UTF-8", "line_end": "\r\n", "sections": [{"name": null, "lines": […]}, …]}
// {"kind": "reg", "encoding": …, "line_end": …, "keys": [{"path": null, "lines": […]}, {"path": "…", "lines": […]}, …]}
// A line is {"key": …, "value": …} or {"name": …, "type": …, "value" or "bytes": …}, {"name": …, "deleted": true},
// {"comment": …}, {"blank": …} or {"other": …}. "line" is there where the file's line differs from the plain form, and
// "end" where its end differs from "line_end".
namespace tme::console {

void WriteJsonDocument(const ConsoleFile& file, Streams& streams);

/// The document that a JSON text describes. Where key, value, name or path are no longer those of "line", that is given
/// up. name: of the file, for messages. Throws Trouble for what no such file can hold.
std::unique_ptr<ConsoleFile> ReadJsonDocument(const std::string& name, std::string_view json);

// The plain forms, without a line end.
std::string PlainEntry(std::string_view key, std::string_view value, bool has_equals);
/// assignment: may be wrapped with this line end.
std::string PlainValue(std::string_view name, std::string_view assignment, std::string_view line_end);

}  // namespace tme::console
