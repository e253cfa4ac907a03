#pragma once

class QKeyEvent;

namespace tme {

bool IsEnterKey(int key);
bool IsModifierKey(int key);

/// Whether a key means the text that it carries: any character but a control character, alone, with Shift, or with
/// AltGr, which is Ctrl+Alt on some systems. Characters without width count with Ctrl+Shift too: some layouts have them
/// there.
bool TypesText(const QKeyEvent& key);

/// Whether Ctrl or Super is held with a key that has no meaning in an editing area then: none but those that move,
/// delete, select all, undo and redo have one. A component of its own mind would type some of them, or delete.
bool IsUnboundKey(const QKeyEvent& key);

}  // namespace tme
