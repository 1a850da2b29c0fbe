#pragma once

#include <QString>
#include <QStringList>

namespace sable::ProcessLauncher {

// Starts a program on its own, without a shell (no argument or path is interpreted) and without
// waiting for it; false when it could not be started.
bool launchDetached(const QString& program, const QStringList& arguments, const QString& workingFolder);

// The file name of a server program in `folder`: `name` itself, with ".exe" on Windows.
QString programPath(const QString& folder, const QString& name);

} // namespace sable::ProcessLauncher
