#pragma once

#include <QString>

namespace sable::UserGuide {

// The guide's first page, where "Quick Guide(&Q)" opens it.
inline const QString kIndexPage = QStringLiteral("Call.html");

// The guide's page about a view of the content pane (Cmd::View), where F1 opens it.
QString pageOfView(int view);

// The folder of the guide: <home>/QuickGuide, where the server's folder keeps it, else the one
// installed with the program (<program folder>/../share/sable-manager/QuickGuide). The first that
// holds the index page; <home>/QuickGuide when neither does.
QString folder(const QString& homeFolder, const QString& executableFolder);

} // namespace sable::UserGuide
