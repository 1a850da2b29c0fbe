#include "widgets/Icons.h"

#include <QHash>

namespace sable::Icons {
namespace {

QIcon cached(const QString& name)
{
    static QHash<QString, QIcon> icons;
    auto it = icons.find(name);
    if (it == icons.end())
        it = icons.insert(name, QIcon(QStringLiteral(":/icons/%1.svg").arg(name)));
    return *it;
}

} // namespace

QIcon app()
{
    return cached(QStringLiteral("app"));
}

QIcon navigation(const char* name)
{
    return cached(QStringLiteral("nav-") + QLatin1String(name));
}

QIcon department()
{
    return cached(QStringLiteral("department"));
}

QIcon member(bool bMale)
{
    return cached(bMale ? QStringLiteral("member-male") : QStringLiteral("member-female"));
}

QIcon rank()
{
    return cached(QStringLiteral("rank"));
}

QIcon up()
{
    return cached(QStringLiteral("up"));
}

QIcon down()
{
    return cached(QStringLiteral("down"));
}

QIcon save()
{
    return cached(QStringLiteral("save"));
}

QIcon undo()
{
    return cached(QStringLiteral("undo"));
}

QIcon redo()
{
    return cached(QStringLiteral("redo"));
}

QIcon search()
{
    return cached(QStringLiteral("search"));
}

QIcon folder(bool bMissing)
{
    return cached(bMissing ? QStringLiteral("folder-missing") : QStringLiteral("folder"));
}

} // namespace sable::Icons
