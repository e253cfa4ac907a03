#pragma once

#include <QByteArray>
#include <optional>

namespace tme {

/// Name of our files and of our action.
inline constexpr char kIntegrationId[] = "tamarind-editor";

/// Thunar's list of actions (uca.xml) with our action in its place, else at the end; without it when `action` is empty.
/// Every other byte stays. Null when the bytes are no such list or another action would change.
std::optional<QByteArray> MergeThunarAction(const QByteArray& bytes, const QByteArray& action);

}  // namespace tme
