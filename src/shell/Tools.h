#pragma once

namespace tme {

struct Global;

/// Gives the items of the Tools and Help menus their handlers; the options dialog has its own.
void BindTools(Global& global);

}  // namespace tme
